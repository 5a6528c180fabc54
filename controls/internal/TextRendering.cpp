#include "controls/internal/TextRendering.h"

#include <QtGlobal>

#include <ft2build.h>
#include FT_MODULE_H

/// Qt's instance of FreeType on this thread.
Q_DECL_IMPORT FT_Library qt_getFreetype();

namespace velmora::controls {

void KeepFontWeights()
{
    // Qt asks for darker stems, which suit dark text on white. On our grounds Medium would look like Semi Bold.
    FT_Bool noDarkening = 1;
    FT_Property_Set(qt_getFreetype(), "cff", "no-stem-darkening", &noDarkening);
}

} // namespace velmora::controls
