#ifndef QNCORVANE_TESTS_SUPPORT_REPLACEDNEW_H
#define QNCORVANE_TESTS_SUPPORT_REPLACEDNEW_H

#include <cstddef>

/// What a program with ReplacedNew.cpp grants of each request by an operator of the language. To be defined by it.
///
/// @return memory that `free` takes. @throw std::bad_alloc.
void* Allocate(std::size_t size, std::size_t alignment);

#endif
