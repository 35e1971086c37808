# What every target of the project is built with: the language level, the warnings, the sanitizers.

set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)

find_program(CORV_CCACHE ccache)
if(CORV_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  set(CMAKE_CXX_COMPILER_LAUNCHER "${CORV_CCACHE}")
endif()

add_library(corv_options INTERFACE)
target_compile_features(corv_options INTERFACE cxx_std_20)
set_property(TARGET corv_options PROPERTY INTERFACE_CXX_EXTENSIONS OFF)
if(CMAKE_CXX_COMPILER_ID MATCHES "GNU|Clang")
  target_compile_options(corv_options INTERFACE
    -Wall -Wextra -Wpedantic -Wconversion -Wshadow $<$<BOOL:${CORV_WERROR}>:-Werror>)
endif()
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  # a false alarm of g++ 12 in std::string's `"text" + string` when it optimises
  target_compile_options(corv_options INTERFACE -Wno-restrict)
endif()
# debug builds also stop at the standard library's own checks: an empty optional, an index outside
target_compile_definitions(corv_options INTERFACE $<$<CONFIG:Debug>:_GLIBCXX_ASSERTIONS>)
if(CORV_SANITIZE)
  target_compile_options(corv_options INTERFACE
    -fsanitize=${CORV_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(corv_options INTERFACE -fsanitize=${CORV_SANITIZE})
endif()
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
