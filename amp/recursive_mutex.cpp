#include "amp/recursive_mutex.h"

#include <system_error>

RecursiveMutex::RecursiveMutex() {
  pthread_mutexattr_t attr;
  int error = pthread_mutexattr_init(&attr);
  if (error == 0) {
    error = pthread_mutexattr_settype(&attr, PTHREAD_MUTEX_RECURSIVE);
    if (error == 0) error = pthread_mutex_init(&mutex_, &attr);
    pthread_mutexattr_destroy(&attr);
  }
  if (error != 0) throw std::system_error(error, std::generic_category(), "recursive mutex");
}

RecursiveMutex::~RecursiveMutex() {
  pthread_mutex_destroy(&mutex_);
}
