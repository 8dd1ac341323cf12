#include <kivcore/RefCounted.h>

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <kivcore/Trace.h>

namespace kivcore::utility {
namespace {

class Probe : public RefCountedObject {
public:
    explicit Probe(int& ended) : ended_(ended) {}
    ~Probe() override { ++ended_; }

private:
    int& ended_;
};

TEST(RefCounted, TheLastHolderDestroysTheObject)
{
    int ended = 0;
    boost::intrusive_ptr<Probe> first(new Probe(ended));
    EXPECT_EQ(first->ReferenceCount(), 1);
    {
        const boost::intrusive_ptr<const RefCountedInterface> second = first;
        EXPECT_EQ(first->ReferenceCount(), 2);
        first.reset();
        EXPECT_EQ(ended, 0);
    }
    EXPECT_EQ(ended, 1);
}

TEST(RefCounted, CountsFromNone)
{
    int ended = 0;
    auto* const object = new Probe(ended);
    EXPECT_EQ(object->ReferenceCount(), 0);
    object->AddReference();
    object->Release();
    EXPECT_EQ(ended, 1);
}

TEST(RefCounted, AReleaseTooManyIsAnAssertionAndDestroysNothing)
{
    int ended = 0;
    Probe object(ended);
    std::vector<std::string> failures;
    debug::SetAssertHandler([&failures](const char* /*file*/, int /*line*/, const char* text) {
        failures.emplace_back(text);
    });
    object.Release();
    debug::SetAssertHandler(nullptr);
    EXPECT_EQ(failures, std::vector<std::string>{"before > 0"});
    EXPECT_EQ(ended, 0);
}

}  // namespace
}  // namespace kivcore::utility
