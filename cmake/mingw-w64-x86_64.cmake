# Cross-compiling for 64-bit Windows with Debian's mingw-w64. The -posix
# compilers are the ones whose libstdc++ has std::mutex and friends; googletest
# will not build against the win32 thread model.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(CORVANE_MINGW_PREFIX x86_64-w64-mingw32)
set(CMAKE_C_COMPILER   ${CORVANE_MINGW_PREFIX}-gcc-posix)
set(CMAKE_CXX_COMPILER ${CORVANE_MINGW_PREFIX}-g++-posix)
set(CMAKE_RC_COMPILER  ${CORVANE_MINGW_PREFIX}-windres)

set(CMAKE_FIND_ROOT_PATH /usr/${CORVANE_MINGW_PREFIX})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)

# Every Windows executable is run under Wine in the test run's own prefix.
set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/../tools/wine-run)
