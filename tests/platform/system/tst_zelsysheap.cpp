#include <zelsysheap.h>

#include <zeltestsupport.h>

#include <QFile>

#include <unistd.h>

#include <atomic>
#include <memory>
#include <thread>
#include <vector>

namespace {

constexpr std::size_t kBlocks = 500000;
constexpr std::size_t kBlockBytes = 64;
//! The blocks take about 40 MB with their headers; at least this much of
//! it comes back once they are freed.
constexpr long long kReturnedBytes = 16ll * 1024 * 1024;

#if defined(__SANITIZE_ADDRESS__)
constexpr bool kUnderAddressSanitizer = true;
#else
constexpr bool kUnderAddressSanitizer = false;
#endif

// The process's resident memory, from the kernel's own count of its pages.
long long ResidentBytes()
{
    QFile statm(QStringLiteral("/proc/self/statm"));
    if (!statm.open(QIODevice::ReadOnly))
        return -1;
    const QList<QByteArray> fields = statm.readAll().simplified().split(' ');
    return fields.size() > 1 ? fields.at(1).toLongLong() * sysconf(_SC_PAGESIZE) : -1;
}

} // namespace

// The streaming post hands pages back from the threads that let written
// procedures go, and those threads then end; two may do so at once. Under
// the address sanitizer, glibc's allocator is not set up by anything else,
// and two first calls at once used to leave its count of the threads on
// its arena one short: the second thread to end aborted the process. The
// test runs first, so that nothing has set the allocator up before; sixteen
// threads at once met that way in about one run of twenty.
TEST(ZELSysHeapTest, UnderTheAddressSanitizerCallsFromThreadsAtOnceDoNothingAndAnswerNo)
{
    if (!kUnderAddressSanitizer)
        GTEST_SKIP() << "only the address sanitizer's build";
    constexpr int kThreads = 16;
    std::atomic<bool> go{false};
    std::atomic<int> answeredYes{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; ++i) {
        threads.emplace_back([&go, &answeredYes] {
            while (!go.load())
                std::this_thread::yield();
            if (ZELSysHeap::ReturnFreePages())
                ++answeredYes;
        });
    }
    go.store(true);
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(answeredYes.load(), 0);
}

TEST(ZELSysHeapTest, PagesOfFreedSmallBlocksGoBackToTheSystem)
{
    if (kUnderAddressSanitizer)
        GTEST_SKIP() << "the address sanitizer's allocator keeps its own pages";

    std::vector<std::unique_ptr<char[]>> blocks(kBlocks);
    for (auto& block : blocks) {
        block.reset(new char[kBlockBytes]);
        std::fill_n(block.get(), kBlockBytes, 'x');
    }
    // A block allocated after the others keeps the heap's top where it is,
    // so that freeing them cannot shrink the heap by itself.
    const auto guard = std::make_unique<char[]>(kBlockBytes);
    blocks.clear();
    const long long before = ResidentBytes();
    ASSERT_GT(before, 0);

    EXPECT_TRUE(ZELSysHeap::ReturnFreePages());

    EXPECT_GE(before - ResidentBytes(), kReturnedBytes);
}
