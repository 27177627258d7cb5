// Counts heap allocations, to prove that a path allocates nothing:
//
//   zrtest::AllocCounter counter;
//   encoder.EncodeConst(x);
//   EXPECT_EQ(counter.Count(), 0);
//
// alloccount.cpp replaces the global operator new and new[] in every form (plain, nothrow,
// aligned) for the whole test executable, the library included, and the matching
// deletes. They allocate with malloc (aligned_alloc for the aligned forms) and free with
// free, so the sanitizers still see every block. Each allocation adds one to a counter of
// the calling thread; an AllocCounter reads that counter's rise since its construction.
// Only operator new is seen: malloc called directly is not counted. FailArrayNew, below,
// makes operator new[] fail for a scope. Under ThreadSanitizer, whose runtime owns
// operator new, nothing is replaced: every count is 0 and FailArrayNew fails nothing, so
// the allocation checks prove something only in the other builds (CountsAllocations).
#ifndef ZRCOMMON920R_TESTS_SUPPORT_ALLOCCOUNT_H
#define ZRCOMMON920R_TESTS_SUPPORT_ALLOCCOUNT_H

namespace zrtest {

// The allocations made through operator new on this thread so far.
long AllocationsOnThisThread();
// Whether allocations are counted at all: false under ThreadSanitizer.
bool CountsAllocations();

class AllocCounter {
 public:
  AllocCounter() : fStart(AllocationsOnThisThread()) {}
  AllocCounter(const AllocCounter &) = delete;
  AllocCounter & operator=(const AllocCounter &) = delete;

  // The allocations made on this thread since construction. Reading it allocates nothing,
  // but a failing EXPECT does: read the count before asserting on anything else.
  long Count() const { return AllocationsOnThisThread() - fStart; }

 private:
  long fStart;
};

// While one lives, operator new[] fails on this thread: the throwing forms throw
// std::bad_alloc and the nothrow forms return null. That drives the allocation-failure paths
// of classes that allocate arrays with new[]; containers allocate through operator new and
// keep working, so GoogleTest's assertions stay usable. Scopes nest.
class FailArrayNew {
 public:
  FailArrayNew();
  ~FailArrayNew();
  FailArrayNew(const FailArrayNew &) = delete;
  FailArrayNew & operator=(const FailArrayNew &) = delete;

 private:
  bool fWasFailing;
};

}  // namespace zrtest

#endif  // ZRCOMMON920R_TESTS_SUPPORT_ALLOCCOUNT_H
