// The replaced global operator new and delete of the test executable; see alloccount.h.
#include "support/alloccount.h"

#include <cstddef>
#include <cstdlib>
#include <new>

// ThreadSanitizer's runtime defines operator new and delete itself, and a second
// definition does not link: under it nothing is counted (see alloccount.h).
#if defined(__SANITIZE_THREAD__)
#define ZR_TEST_KEEP_OPERATOR_NEW 1
#elif defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define ZR_TEST_KEEP_OPERATOR_NEW 1
#endif
#endif

namespace {

// Constant-initialised, so it is usable by allocations made before main and on any thread.
thread_local long tAllocations = 0;
// Set while a FailArrayNew lives on this thread.
thread_local bool tFailArrayNew = false;

#ifndef ZR_TEST_KEEP_OPERATOR_NEW

void * Allocate(std::size_t size) noexcept {
  ++tAllocations;
  return std::malloc(size == 0 ? 1 : size);
}

void * AllocateAligned(std::size_t size, std::align_val_t align) noexcept {
  ++tAllocations;
  const std::size_t alignment = static_cast<std::size_t>(align);
  // aligned_alloc wants a size that is a multiple of the alignment.
  const std::size_t rounded = (size + alignment - 1) / alignment * alignment;
  return std::aligned_alloc(alignment, rounded == 0 ? alignment : rounded);
}

// Array allocation, or null while a FailArrayNew lives.
void * AllocateArray(std::size_t size) noexcept {
  return tFailArrayNew ? nullptr : Allocate(size);
}

void * AllocateArrayAligned(std::size_t size, std::align_val_t align) noexcept {
  return tFailArrayNew ? nullptr : AllocateAligned(size, align);
}

void * OrThrow(void * p) {
  if (p == nullptr) throw std::bad_alloc();
  return p;
}
#endif

}  // namespace

namespace zrtest {

long AllocationsOnThisThread() {
  return tAllocations;
}

FailArrayNew::FailArrayNew() : fWasFailing(tFailArrayNew) {
  tFailArrayNew = true;
}

FailArrayNew::~FailArrayNew() {
  tFailArrayNew = fWasFailing;
}

bool CountsAllocations() {
#ifdef ZR_TEST_KEEP_OPERATOR_NEW
  return false;
#else
  return true;
#endif
}

}  // namespace zrtest

#ifndef ZR_TEST_KEEP_OPERATOR_NEW
void * operator new(std::size_t size) {
  return OrThrow(Allocate(size));
}
void * operator new[](std::size_t size) {
  return OrThrow(AllocateArray(size));
}
void * operator new(std::size_t size, const std::nothrow_t &) noexcept {
  return Allocate(size);
}
void * operator new[](std::size_t size, const std::nothrow_t &) noexcept {
  return AllocateArray(size);
}
void * operator new(std::size_t size, std::align_val_t align) {
  return OrThrow(AllocateAligned(size, align));
}
void * operator new[](std::size_t size, std::align_val_t align) {
  return OrThrow(AllocateArrayAligned(size, align));
}
void * operator new(std::size_t size, std::align_val_t align, const std::nothrow_t &) noexcept {
  return AllocateAligned(size, align);
}
void * operator new[](std::size_t size, std::align_val_t align, const std::nothrow_t &) noexcept {
  return AllocateArrayAligned(size, align);
}

void operator delete(void * p) noexcept {
  std::free(p);
}
void operator delete[](void * p) noexcept {
  std::free(p);
}
void operator delete(void * p, std::size_t) noexcept {
  std::free(p);
}
void operator delete[](void * p, std::size_t) noexcept {
  std::free(p);
}
void operator delete(void * p, const std::nothrow_t &) noexcept {
  std::free(p);
}
void operator delete[](void * p, const std::nothrow_t &) noexcept {
  std::free(p);
}
void operator delete(void * p, std::align_val_t) noexcept {
  std::free(p);
}
void operator delete[](void * p, std::align_val_t) noexcept {
  std::free(p);
}
void operator delete(void * p, std::size_t, std::align_val_t) noexcept {
  std::free(p);
}
void operator delete[](void * p, std::size_t, std::align_val_t) noexcept {
  std::free(p);
}
void operator delete(void * p, std::align_val_t, const std::nothrow_t &) noexcept {
  std::free(p);
}
void operator delete[](void * p, std::align_val_t, const std::nothrow_t &) noexcept {
  std::free(p);
}
#endif
