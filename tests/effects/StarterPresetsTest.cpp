#include "effects/FX_ChainContainer_Class.h"
#include "effects/FX_Module.h"
#include "tests/support/TestEnvironment.h"

#include <bit>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <sstream>

#include <gtest/gtest.h>

namespace velmora::effects {
namespace {

namespace fs = std::filesystem;

std::string TextOf(const fs::path& path)
{
    std::stringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
}

/// Each value of the effect is one that its slider can have, so that the program knows the preset again.
void ExpectOnSliders(const FX_Data_Class& effect, const fs::path& path)
{
    FX_Block block{};
    FX_GenerateStruct(block, effect.FxType(), effect.GetXMLData());
    std::size_t slot = 0;
    for (const FX_Parameter& parameter : FX_ParameterDefinitions(effect.FxType())) {
        const std::uint32_t bits = block[slot++];
        EXPECT_NE(effect.GetXMLData().find("<" + std::string(parameter.field) + ">"), std::string::npos)
            << path << " has no " << parameter.field;
        if (parameter.stored == FX_ValueType::Bool) {
            continue;
        }
        const float value = parameter.stored == FX_ValueType::Int ? static_cast<float>(static_cast<std::int32_t>(bits))
                                                                  : std::bit_cast<float>(bits);
        const float step = parameter.treatAs == FX_ValueType::Int ? 1.0F : 0.01F;
        EXPECT_TRUE(value >= parameter.min && value <= parameter.max) << path << ' ' << parameter.field;
        EXPECT_NEAR(value, std::round(value / step) * step, 1e-6) << path << ' ' << parameter.field;
    }
}

class StarterPresets : public ::testing::Test {
protected:
    static std::vector<fs::path> FilesIn(const char* folder)
    {
        std::vector<fs::path> files;
        for (const auto& entry : fs::directory_iterator(fs::path(VELMORA_PRESETS) / folder)) {
            files.push_back(entry.path());
        }
        return files;
    }

    testing::TestEnvironment m_environment;
};

TEST_F(StarterPresets, PacksAreWholeAndOnTheirSliders)
{
    for (const char* folder : {"FxPacks-Voice", "FxPacks-Music"}) {
        const std::vector<fs::path> files = FilesIn(folder);
        EXPECT_GE(files.size(), 3u);
        for (const fs::path& path : files) {
            EXPECT_EQ(path.extension(), ".pack");
            EXPECT_NE(path.filename(), "default.pack") << "new channels start without effects";
            FX_ChainContainer_Class container(*m_environment);
            ASSERT_TRUE(container.LoadPack(TextOf(path))) << path;
            ASSERT_EQ(container.TotalChannels(), 1);
            const auto chain = container.Get_FXChainObj_by_Index(1);
            for (std::int32_t i = 0; i <= chain->FX_TotalN(); ++i) {
                ExpectOnSliders(*chain->GetFxClass_by_Index(i)->FxDataOBJ, path);
            }
        }
    }
}

TEST_F(StarterPresets, EachEffectHasSomeThatItsNameLeadsTo)
{
    std::array<int, kEffectCount> found{};
    for (const fs::path& path : FilesIn("Fx")) {
        FX_Data_Class effect(m_environment.ports.messages);
        ASSERT_TRUE(effect.LoadXMLData(TextOf(path))) << path;
        ASSERT_TRUE(path.string().ends_with(".fx." + std::string(FX_GetName(effect.FxType())))) << path;
        ++found[static_cast<std::size_t>(effect.FxType())];
        ExpectOnSliders(effect, path);
    }
    for (const int count : found) {
        EXPECT_GE(count, 3);
    }
}

} // namespace
} // namespace velmora::effects
