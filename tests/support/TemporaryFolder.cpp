#include "tests/support/TemporaryFolder.h"

#include "core/Paths.h"

#include <stdexcept>
#include <system_error>

#include <stdlib.h>

namespace velmora::testing {

TemporaryFolder::TemporaryFolder()
{
    std::string name = (std::filesystem::temp_directory_path() / "velmora-test-XXXXXX").native();
    if (!mkdtemp(name.data())) {
        throw std::runtime_error("cannot make " + name);
    }
    m_path = name;
}

TemporaryFolder::~TemporaryFolder()
{
    std::error_code error;
    std::filesystem::remove_all(m_path, error);
}

std::string TemporaryFolder::Path(std::string_view name) const
{
    const std::string folder = core::InternalPath(m_path.native());
    return name.empty() ? folder : folder + '\\' + std::string(name);
}

} // namespace velmora::testing
