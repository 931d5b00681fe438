# Clang with libc++, the C++ library that a Mac has; on a Mac that is the system's own compiler.
if(NOT CMAKE_HOST_APPLE)
  set(CMAKE_CXX_COMPILER clang++-19)
  set(CMAKE_OBJCXX_COMPILER clang++-19)
  set(CMAKE_CXX_FLAGS_INIT -stdlib=libc++)
  set(CMAKE_OBJCXX_FLAGS_INIT -stdlib=libc++)
endif()
