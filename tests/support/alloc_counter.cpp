// SPDX-License-Identifier: MIT
// Replaces operator new for the whole executable. A sanitizer has its own, which must stay; there its hooks count.
#include "support/alloc_counter.h"

#include <cstdlib>
#include <new>

#if defined(__SANITIZE_ADDRESS__)
#define TAVRILON_ALLOCATOR_HOOKS 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define TAVRILON_ALLOCATOR_HOOKS 1
#endif
#endif

namespace {
thread_local std::size_t allocations = 0;
}  // namespace

#ifdef TAVRILON_ALLOCATOR_HOOKS

#include <sanitizer/allocator_interface.h>

namespace {
void CountMalloc(const volatile void*, std::size_t) { ++allocations; }
void IgnoreFree(const volatile void*) {}
const int hooks_installed = __sanitizer_install_malloc_and_free_hooks(CountMalloc, IgnoreFree);
}  // namespace

#else

namespace {

void* Allocate(std::size_t size, std::size_t alignment) {
  ++allocations;
  // aligned_alloc wants a multiple of the alignment, and never zero bytes.
  void* memory = alignment == 0 ? std::malloc(size > 0 ? size : 1)
                                : std::aligned_alloc(alignment, (size / alignment + 1) * alignment);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}

}  // namespace

void* operator new(std::size_t size) { return Allocate(size, 0); }
void* operator new(std::size_t size, std::align_val_t alignment) {
  return Allocate(size, static_cast<std::size_t>(alignment));
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete(void* memory, std::align_val_t) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t, std::align_val_t) noexcept { std::free(memory); }

#endif

namespace tests {

AllocCounter::AllocCounter() : start_(allocations) {}

std::size_t AllocCounter::Count() const { return allocations - start_; }

}  // namespace tests
