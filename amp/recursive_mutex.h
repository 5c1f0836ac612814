// A POSIX recursive mutex: the effect's one lock, shared by parameter stores and the audio
// thread's block. lock() and unlock() are noexcept so the audio path has no throwing branch: a
// mutex that initialised is only ever locked by the thread that will unlock it.
// Satisfies BasicLockable (std::lock_guard).
#pragma once

#include <pthread.h>

class RecursiveMutex {
 public:
  // Throws std::system_error when the mutex cannot be created.
  RecursiveMutex();
  ~RecursiveMutex();
  RecursiveMutex(const RecursiveMutex&) = delete;
  RecursiveMutex& operator=(const RecursiveMutex&) = delete;

  void lock() noexcept { pthread_mutex_lock(&mutex_); }
  void unlock() noexcept { pthread_mutex_unlock(&mutex_); }

 private:
  pthread_mutex_t mutex_;
};
