#include "tests/support/TestEnvironment.h"

namespace velmora::testing {

TestEnvironment::TestEnvironment()
{
    ports.shellFolders.appExe = folder.Path();
    ports.trash.folder = folder.Path("trash");
    std::string table;
    for (const std::string name : {"newprojects", "config", "presets", "examples"}) {
        disk.MakeFolderIfMissing(folder.Path(name));
        table += name + "={AppEXE}\\" + name + "\n";
    }
    disk.WriteTextFile(folder.Path("paths.cfg"), table);
    m_environment = std::make_unique<core::Environment>(ports.All(), files);
    m_environment->paths.LoadPaths(folder.Path("paths.cfg"));
}

} // namespace velmora::testing
