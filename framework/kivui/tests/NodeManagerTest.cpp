#include <kivui/NodeManager.h>

#include <limits>
#include <memory>
#include <stdexcept>

#include <gtest/gtest.h>

#include <kivui/GdiPlus.h>
#include <kivui/Window.h>

namespace kivui::ui {
namespace {

class TestNodeManager : public OS_NodeManager {};

class NodeManager : public testing::Test {
protected:
    ~NodeManager() override { UI_NodeManager::Set(nullptr); }
};

TEST_F(NodeManager, IsThereWhileItLivesAndIsRegistered)
{
    EXPECT_EQ(UI_NodeManager::Get(true), nullptr);
    EXPECT_THROW(UI_NodeManager::Get(false), std::logic_error);

    auto manager = std::make_unique<TestNodeManager>();
    EXPECT_EQ(UI_NodeManager::Get(true), nullptr) << "being made is not being registered";
    UI_NodeManager::Set(manager.get());
    EXPECT_EQ(UI_NodeManager::Get(true), manager.get());
    EXPECT_EQ(UI_NodeManager::Get(false), manager.get());

    manager.reset();
    EXPECT_EQ(UI_NodeManager::Get(true), nullptr);
    EXPECT_THROW(UI_NodeManager::Get(false), std::logic_error);
}

TEST_F(NodeManager, TheEndOfAnotherOneLeavesTheRegisteredOne)
{
    TestNodeManager registered;
    {
        TestNodeManager replaced;
        UI_NodeManager::Set(&replaced);
        UI_NodeManager::Set(&registered);
    }
    EXPECT_EQ(UI_NodeManager::Get(true), &registered);
    UI_NodeManager::Set(nullptr);
    EXPECT_EQ(UI_NodeManager::Get(true), nullptr);
}

TEST_F(NodeManager, BeginsWithTheSystemsScale)
{
    TestNodeManager manager;
    EXPECT_EQ(manager.GetDPISelectionType(), DPISelectionType::kSystem);
    EXPECT_EQ(manager.GetScaleMatrix(), (ScaleMatrixT<float>{0, 0, 1, 1}));
    EXPECT_EQ(manager.DrawingScale(1.5f), 1.5f);
    EXPECT_TRUE(manager.Modules().empty());
}

TEST_F(NodeManager, RecommendedScaleIsAskedForAtEachDrawing)
{
    TestNodeManager manager;
    float scale = 2;
    float askedFor = 0;
    DPISelectionType selection = DPISelectionType::kSystem;
    manager.SetRecommendedScaleFactorFunction([&](float screenScale, DPISelectionType type) {
        askedFor = screenScale;
        selection = type;
        return scale;
    });
    EXPECT_EQ(manager.DrawingScale(1.25f), 1.25f) << "the selection decides";
    manager.SetDPISelectionType(DPISelectionType::kRecommended);
    EXPECT_EQ(manager.DrawingScale(1.25f), 2);
    EXPECT_EQ(askedFor, 1.25f);
    EXPECT_EQ(selection, DPISelectionType::kRecommended);
    scale = 3;
    EXPECT_EQ(manager.DrawingScale(1), 3);
    manager.SetRecommendedScaleFactorFunction({});
    EXPECT_EQ(manager.DrawingScale(1.25f), 1.25f) << "without a function it is the screen's";
}

struct ScaleCase {
    float scale;
    float want;
};

constexpr float kInfinity = std::numeric_limits<float>::infinity();

constexpr ScaleCase kScaleCases[] = {
    {1, 1},
    {0.5f, 0.5f},
    {0.49f, 0.5f},
    {0, 0.5f},
    {-3, 0.5f},
    {4, 4},
    {4.01f, 4},
    {1e30f, 4},
    {kInfinity, 4},
    {-kInfinity, 0.5f},
    {std::numeric_limits<float>::quiet_NaN(), 1},
};

TEST_F(NodeManager, DrawingScaleIsClamped)
{
    TestNodeManager manager;
    manager.SetDPISelectionType(DPISelectionType::kRecommended);
    for (const ScaleCase& row : kScaleCases) {
        SCOPED_TRACE(row.scale);
        manager.SetRecommendedScaleFactorFunction(
            [&row](float, DPISelectionType) { return row.scale; });
        EXPECT_EQ(manager.DrawingScale(1), row.want);
        manager.SetRecommendedScaleFactorFunction({});
        EXPECT_EQ(manager.DrawingScale(row.scale), row.want);
    }
}

TEST_F(NodeManager, KeepsTheScaleMatrixAsItIs)
{
    TestNodeManager manager;
    const ScaleMatrixT<float> matrix{0, 0, 1e9f, -2};
    manager.SetScaleMatrix(matrix);
    EXPECT_EQ(manager.GetScaleMatrix(), matrix);
    EXPECT_EQ(manager.DrawingScale(1), 1) << "the matrix is not the drawing scale";
}

TEST_F(NodeManager, EntersAModuleOnce)
{
    TestNodeManager manager;
    manager.InitializeModule({"kivmetadataui", "0.1.0"});
    manager.InitializeModule({"other", "2"});
    manager.InitializeModule({"kivmetadataui", "0.2.0"});
    ASSERT_EQ(manager.Modules().size(), 2u);
    EXPECT_EQ(manager.Modules()[0].name, "kivmetadataui");
    EXPECT_EQ(manager.Modules()[0].version, "0.1.0");
    EXPECT_EQ(manager.Modules()[1].name, "other");
}

TEST(Window, NotesTheInstanceOnly)
{
    int module = 0;
    const auto instance = reinterpret_cast<HINSTANCE>(&module);
    OS_Window::UI_Initialize(instance);
    EXPECT_EQ(OS_Window::Instance(), instance);
    OS_Window::UI_Initialize(nullptr);
    EXPECT_EQ(OS_Window::Instance(), nullptr);
}

TEST(GdiPlus, GuardsMayOverlap)
{
    auto first = std::make_shared<utility::StartupShutdownGdiPlus>();
    const auto second = std::make_shared<utility::StartupShutdownGdiPlus>();
    first.reset();
    EXPECT_EQ(second.use_count(), 1);
}

}  // namespace
}  // namespace kivui::ui
