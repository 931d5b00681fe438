# What the worker is linked with. An archive is taken before a shared library, where there is one:
# each shared library costs a start about as much as the rest of an empty run.

find_package(PkgConfig REQUIRED)
find_package(nlohmann_json REQUIRED)
find_package(Threads REQUIRED)

# Declares `target` for the pkg-config module `module`.
function(tasselby_find target module archive)
  pkg_check_modules(${target} REQUIRED IMPORTED_TARGET ${module})
  find_library(${target}_ARCHIVE NAMES ${archive} PATHS ${${target}_LIBRARY_DIRS})
  add_library(${target} INTERFACE)
  if(TASSELBY_STATIC AND ${target}_ARCHIVE)
    target_include_directories(${target} SYSTEM INTERFACE ${${target}_INCLUDE_DIRS})
    target_link_libraries(${target} INTERFACE ${${target}_ARCHIVE} ${CMAKE_DL_LIBS} m Threads::Threads)
  else()
    target_link_libraries(${target} INTERFACE PkgConfig::${target})
  endif()
endfunction()

if(APPLE)
  # Every Mac has these two.
  find_package(SQLite3 REQUIRED)
  add_library(sqlite ALIAS SQLite::SQLite3)
  find_package(EXPAT REQUIRED)
  add_library(expat ALIAS EXPAT::EXPAT)
else()
  tasselby_find(sqlite sqlite3 libsqlite3.a)
  tasselby_find(expat expat libexpat.a)
endif()
tasselby_find(utf8proc libutf8proc libutf8proc.a)
# An application brings nothing along: what it links has to be every Mac's, or in it.
if(APPLE AND NOT (TASSELBY_STATIC AND utf8proc_ARCHIVE))
  message(FATAL_ERROR "The application needs utf8proc as an archive: libutf8proc.a was not found, "
    "or TASSELBY_STATIC is off")
endif()

add_library(worker_dependencies INTERFACE)
target_link_libraries(worker_dependencies INTERFACE sqlite utf8proc nlohmann_json::nlohmann_json)

# Only the header of sd-bus is used; the library is loaded when a notification is due.
add_library(offline_dependencies INTERFACE)
target_link_libraries(offline_dependencies INTERFACE expat ${CMAKE_DL_LIBS})
pkg_check_modules(systemd IMPORTED_TARGET libsystemd)
if(systemd_FOUND)
  target_include_directories(offline_dependencies SYSTEM INTERFACE ${systemd_INCLUDE_DIRS})
endif()
