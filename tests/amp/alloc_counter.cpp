// Counts every operator new, single and array (a sanitizer's runtime would serve new[] itself);
// exported, so the loaded plug-in binds to them too. While failAllocations is set, every one fails
// as if memory had run out. Alone in this file so that no caller inlines them.
#include <atomic>
#include <cstdlib>
#include <new>

std::atomic<long> allocations{0};
std::atomic<bool> failAllocations{false};

static void* counted(std::size_t size) noexcept {
  allocations.fetch_add(1, std::memory_order_relaxed);
  if (failAllocations.load(std::memory_order_relaxed)) return nullptr;
  return std::malloc(size == 0 ? 1 : size);
}
void* operator new(std::size_t size) {
  if (void* p = counted(size)) return p;
  throw std::bad_alloc();
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return counted(size);
}
void* operator new[](std::size_t size) {
  if (void* p = counted(size)) return p;
  throw std::bad_alloc();
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
  return counted(size);
}
void operator delete(void* p) noexcept {
  std::free(p);
}
void operator delete(void* p, std::size_t) noexcept {
  std::free(p);
}
void operator delete[](void* p) noexcept {
  std::free(p);
}
void operator delete[](void* p, std::size_t) noexcept {
  std::free(p);
}
