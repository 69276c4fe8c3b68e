# The project's own build for macOS 13, executed on Linux: the compiler, linker and headers of the
# check. QUORIN_CHECK_STATE is the check's folder (build/macos-check), QUORIN_DARWIN_PROCESSOR arm64
# or x86_64, QUORIN_LLVM_TOOLS the folder of llvm's ar and its like, QUORIN_PACKAGES that of the
# stand-ins for what Homebrew installs.
set(CMAKE_SYSTEM_NAME Darwin)
set(CMAKE_SYSTEM_PROCESSOR ${QUORIN_DARWIN_PROCESSOR})
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES
     QUORIN_CHECK_STATE QUORIN_DARWIN_PROCESSOR QUORIN_LLVM_TOOLS QUORIN_PACKAGES)
set(llvm /usr/lib/llvm-19)
set(surface ${CMAKE_CURRENT_LIST_DIR}/../surface)

set(CMAKE_CXX_COMPILER ${llvm}/bin/clang++)
set(CMAKE_OBJCXX_COMPILER ${llvm}/bin/clang++)
set(CMAKE_CXX_COMPILER_TARGET ${QUORIN_DARWIN_PROCESSOR}-apple-macos13)
set(CMAKE_OBJCXX_COMPILER_TARGET ${QUORIN_DARWIN_PROCESSOR}-apple-macos13)
set(CMAKE_OSX_ARCHITECTURES ${QUORIN_DARWIN_PROCESSOR} CACHE STRING "")
set(CMAKE_OSX_SYSROOT ${QUORIN_CHECK_STATE}/stubs CACHE PATH "")
foreach(tool AR RANLIB OTOOL INSTALL_NAME_TOOL STRIP)
  string(TOLOWER ${tool} name)
  string(REPLACE "_" "-" name ${name})
  set(CMAKE_${tool} ${QUORIN_LLVM_TOOLS}/llvm-${name} CACHE FILEPATH "" FORCE)
endforeach()
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)

# What the surface does not declare does not compile, and what the stubs lack does not link.
file(GLOB builtin ${llvm}/lib/clang/*/include)
set(flags "-nostdinc -nostdinc++ -D_GNU_SOURCE")
foreach(folder ${QUORIN_CHECK_STATE}/tools/libc++-settings ${surface}/shim
        ${llvm}/include/c++/v1 ${builtin} ${QUORIN_CHECK_STATE}/tools/c-headers ${surface}
        ${QUORIN_CHECK_STATE}/tools/third-party)
  string(APPEND flags " -isystem ${folder}")
endforeach()
set(CMAKE_CXX_FLAGS_INIT "${flags}")
set(CMAKE_OBJCXX_FLAGS_INIT "${flags}")
set(CMAKE_EXE_LINKER_FLAGS_INIT
    "--ld-path=${llvm}/bin/ld64.lld -mlinker-version=820 -lclang_rt -lobjc")
set(CMAKE_FIND_ROOT_PATH ${QUORIN_PACKAGES})
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
