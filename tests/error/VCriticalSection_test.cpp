// The lock for callers.
#include <VelaBase/VCriticalSection.h>

#include <gtest/gtest.h>

#include <future>
#include <memory>
#include <thread>
#include <type_traits>
#include <vector>

namespace {

static_assert(std::is_default_constructible_v<VCriticalSection>);
static_assert(std::has_virtual_destructor_v<VCriticalSection>);
static_assert(!std::is_copy_constructible_v<VCriticalSection>);
static_assert(!std::is_copy_assignable_v<VCriticalSection>);
static_assert(!std::is_move_constructible_v<VCriticalSection>);
static_assert(!std::is_move_assignable_v<VCriticalSection>);
static_assert(sizeof(VCriticalSection) == 2 * sizeof(void*), "a virtual table and one owned pointer");

template <class T>
concept PubliclyLockable = requires(T& section)
{
    section.lock();
};
template <class T>
concept PubliclyUnlockable = requires(T& section)
{
    section.unlock();
};

static_assert(!PubliclyLockable<VCriticalSection>);
static_assert(!PubliclyUnlockable<VCriticalSection>);

class Lock : public VCriticalSection
{
public:
    explicit Lock(bool* destroyed_flag = nullptr) : destroyed(destroyed_flag) {}
    ~Lock() override
    {
        if (destroyed != nullptr)
            *destroyed = true;
    }

    using VCriticalSection::lock;
    using VCriticalSection::unlock;

private:
    bool* destroyed;
};

static_assert(PubliclyLockable<Lock> && PubliclyUnlockable<Lock>);

// The counters are no atomics: without the lock increments would get lost. The threads give way while
// they are inside, which is where another would have to come in.
TEST(VCriticalSection, AdmitsOneThreadAtATime)
{
    const int thread_count = 4;
    const int rounds = 500;
    Lock section;
    long counter = 0;
    int inside = 0;
    bool met_another = false;
    std::promise<void> all_started;
    const std::shared_future<void> start = all_started.get_future().share();
    std::vector<std::thread> threads;
    for (int i = 0; i < thread_count; ++i)
        threads.emplace_back(
            [&section, &counter, &inside, &met_another, start]
            {
                start.wait();
                for (int round = 0; round < rounds; ++round)
                {
                    section.lock();
                    met_another = met_another || inside != 0;
                    ++inside;
                    const long counted = counter;
                    std::this_thread::yield();
                    counter = counted + 1;
                    --inside;
                    section.unlock();
                }
            });
    all_started.set_value();
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(counter, static_cast<long>(thread_count) * rounds);
    EXPECT_FALSE(met_another);
}

TEST(VCriticalSection, MakesAnotherThreadWaitUntilItIsUnlockedAsOftenAsLocked)
{
    Lock section;
    int unlocks_to_come = 3;
    int seen_by_other = -1;
    std::promise<void> about_to_lock;
    for (int i = 0; i < 3; ++i)
        section.lock();
    std::thread other(
        [&]
        {
            about_to_lock.set_value();
            section.lock();
            seen_by_other = unlocks_to_come;
            section.unlock();
        });
    about_to_lock.get_future().wait();
    for (int i = 0; i < 1000; ++i)
        std::this_thread::yield(); // an occasion to come in too early; nothing depends on its length
    while (unlocks_to_come > 0)
    {
        --unlocks_to_come;
        section.unlock();
    }
    other.join();
    EXPECT_EQ(seen_by_other, 0);
}

TEST(VCriticalSection, MayBeLockedAgainByItsHolder)
{
    Lock section;
    for (int i = 0; i < 1000; ++i)
        section.lock();
    for (int i = 0; i < 1000; ++i)
        section.unlock();
    bool entered = false;
    std::thread other(
        [&]
        {
            section.lock();
            entered = true;
            section.unlock();
        });
    other.join();
    EXPECT_TRUE(entered) << "nothing is held any longer";
}

TEST(VCriticalSection, DoesNotLockAnother)
{
    Lock held;
    Lock free;
    held.lock();
    bool entered = false;
    std::thread other(
        [&]
        {
            free.lock();
            entered = true;
            free.unlock();
        });
    other.join();
    held.unlock();
    EXPECT_TRUE(entered);
}

TEST(VCriticalSection, IsDestroyedThroughItsBase)
{
    bool destroyed = false;
    {
        const std::unique_ptr<VCriticalSection> section = std::make_unique<Lock>(&destroyed);
        EXPECT_FALSE(destroyed);
    }
    EXPECT_TRUE(destroyed);
}

TEST(VCriticalSection, ComesAndGoesManyTimes)
{
    int locked = 0;
    for (int i = 0; i < 1000; ++i)
    {
        Lock section;
        section.lock();
        ++locked;
        section.unlock();
    }
    EXPECT_EQ(locked, 1000);
}

} // namespace
