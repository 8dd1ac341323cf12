// Lets every allocation fail in turn. A program of its own, because it replaces the global operator
// new.

#include "svgbridge/tests/BridgeFixture.h"

#include <cstddef>
#include <cstdlib>
#include <functional>
#include <new>

namespace {

constexpr long kNever = -1;
long allocationsLeft = kNever;
long liveBlocks = 0;

}  // namespace

void* operator new(std::size_t size)
{
    if (allocationsLeft == 0) {
        throw std::bad_alloc();
    }
    if (allocationsLeft > 0) {
        --allocationsLeft;
    }
    void* const block = std::malloc(size);
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    ++liveBlocks;
    return block;
}

void operator delete(void* memory) noexcept
{
    if (memory != nullptr) {
        --liveBlocks;
        std::free(memory);
    }
}

void operator delete(void* memory, std::size_t) noexcept
{
    operator delete(memory);
}

// The other forms too: a sanitizer's own would not come here.
void* operator new(std::size_t size, const std::nothrow_t&) noexcept
{
    try {
        return operator new(size);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

void* operator new[](std::size_t size)
{
    return operator new(size);
}

void* operator new[](std::size_t size, const std::nothrow_t&) noexcept
{
    return operator new(size, std::nothrow);
}

void operator delete[](void* memory) noexcept
{
    operator delete(memory);
}

void operator delete[](void* memory, std::size_t) noexcept
{
    operator delete(memory);
}

namespace svgloom {
namespace {

constexpr char kArtwork[] =
    "<svg viewBox='0 0 10 10'><defs><linearGradient id='g'><stop offset='0' stop-color='red'/>"
    "</linearGradient><clipPath id='c'><circle r='5'/></clipPath></defs>"
    "<style>.a{fill:blue;}</style><g class='a' clip-path='url(#c)'>"
    "<path d='M0 0H10V10Z' fill='url(#g)' stroke='red' stroke-dasharray='1 2'/>"
    "<use href='#p'/></g><path id='p' d='M0 0L1 1' fill='var(--ink)'/></svg>";

class AllocationTest : public BridgeTest {
protected:
    /// Runs `step` until it has all the memory that it asks for, and `check` after each failure.
    static void FailEachAllocation(const std::function<void()>& step,
                                   const std::function<void()>& check)
    {
        step();  // what is made once for the process is there then
        long failures = 0;
        for (bool isDone = false; !isDone; ++failures) {
            const long blocks = liveBlocks;
            allocationsLeft = failures;
            try {
                step();
                isDone = true;
                allocationsLeft = kNever;
            } catch (const std::bad_alloc&) {
                allocationsLeft = kNever;
                EXPECT_EQ(liveBlocks, blocks) << "after allocation " << failures;
                check();
            }
        }
        EXPECT_GT(failures, 2);
    }
};

TEST_F(AllocationTest, ADocumentThatCannotBeHadLeavesNothing)
{
    FailEachAllocation([] { Create(kArtwork); },
                       [] { EXPECT_EQ(SVGHandlerState::DocumentCount(), 0u); });
    EXPECT_EQ(SVGHandlerState::DocumentCount(), 0u);
}

TEST_F(AllocationTest, StyleDataThatCannotBeHadLeavesNothing)
{
    FailEachAllocation([] { Style(".a{fill:red;} .b{fill:blue;stroke:red;}"); }, [] {});
}

TEST_F(AllocationTest, ADrawThatFailedCanBeDrawnAgain)
{
    const Document document = Create(kArtwork);
    const StyleData style = Style(".a{fill:red;}");
    style->colors.emplace("ink", kivui::scrivel::Color{0, 1, 0, 1});
    const auto draw = [&] {
        const auto target = kivui::scrivel::CreateRecordingTarget([](std::string_view) {});
        if (target == nullptr) {
            throw std::bad_alloc();
        }
        SVGHandler::Get().Render(*target, document, style, 10, 10);
    };
    const std::string want = Draw(document);
    FailEachAllocation(draw, [&] { EXPECT_EQ(Draw(document), want); });
}

}  // namespace
}  // namespace svgloom
