#include "app/NamedMutex.h"

#include <QByteArray>
#include <string>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace velmora::app {

NamedMutex::NamedMutex(std::string_view name)
{
    const std::string folder = qgetenv("XDG_RUNTIME_DIR").toStdString();
    if (folder.empty()) {
        return;
    }
    m_file = open((folder + '/').append(name).c_str(), O_RDWR | O_CREAT | O_CLOEXEC, S_IRUSR | S_IWUSR);
    if (m_file >= 0) {
        flock(m_file, LOCK_SH | LOCK_NB);
    }
}

NamedMutex::~NamedMutex()
{
    if (m_file >= 0) {
        close(m_file);
    }
}

} // namespace velmora::app
