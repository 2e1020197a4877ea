# One shared object per instruction level. The baseline stands in the library folder; the others stand in the folders
# below glibc-hwcaps that the dynamic loader searches first on a processor that has the level. The layout is the same in
# the build tree and after installation.

file(GLOB ZIMSR_SOURCES CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/zimcore/src/*.cpp" "${PROJECT_SOURCE_DIR}/base/*.cpp"
     "${PROJECT_SOURCE_DIR}/zimsr/src/*.cpp")

# The all-integer filter bank is for processors without a floating-point unit: the compiler gets no register of one.
set_source_files_properties(
  "${PROJECT_SOURCE_DIR}/zimsr/src/melfbank_fixed.cpp"
  PROPERTIES COMPILE_OPTIONS "$<IF:$<CXX_COMPILER_ID:GNU>,-mgeneral-regs-only,-mno-implicit-float>")

set(ZIMSR_LIBRARY_DIR "${PROJECT_BINARY_DIR}/lib")
set(ZIMSR_BASELINE_FLAGS -msse3 -mfpmath=sse)

function(zimsr_library target kind level_flags)
  add_library(${target} ${kind} ${ZIMSR_SOURCES})
  target_compile_options(${target} PRIVATE ${level_flags})
  target_link_libraries(${target} PRIVATE $<BUILD_INTERFACE:zimsr_kernel>)
  target_include_directories(
    ${target}
    PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include> $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>
    PRIVATE "${PROJECT_SOURCE_DIR}")
  set_target_properties(${target} PROPERTIES OUTPUT_NAME zimsr)
endfunction()

function(zimsr_shared target level_flags output_dir)
  zimsr_library(${target} SHARED "${level_flags}")
  set(map "${PROJECT_SOURCE_DIR}/cmake/zimsr.map")
  # Linked by the C driver: the shared object needs libc and libm and no C++ runtime.
  set_target_properties(
    ${target}
    PROPERTIES LINKER_LANGUAGE C
               VERSION ${PROJECT_VERSION}
               SOVERSION ${PROJECT_VERSION_MAJOR}
               LIBRARY_OUTPUT_DIRECTORY "${output_dir}"
               LINK_DEPENDS "${map}")
  target_link_options(${target} PRIVATE "LINKER:--version-script=${map}" LINKER:--as-needed LINKER:-z,relro,-z,now)
  if(ZIMSR_SANITIZE)
    # The sanitizer's runtime has malloc, so the tests stand in front of it by another name.
    target_link_options(${target} PRIVATE LINKER:--wrap=malloc,--wrap=free)
  else()
    target_link_options(${target} PRIVATE LINKER:--no-undefined)
  endif()
  target_link_libraries(${target} PRIVATE m)
endfunction()

zimsr_shared(zimsr "${ZIMSR_BASELINE_FLAGS}" "${ZIMSR_LIBRARY_DIR}")
add_library(zimsr::zimsr ALIAS zimsr)

# g++'s vectoriser fuses multiplications and additions in spite of -ffp-contract=off. It has the instructions from FMA,
# and from AVX-512 even without FMA, where only the vectoriser itself can go; the kernels are written in vectors anyway.
set(ZIMSR_UNFUSED_x86-64-v3 -mno-fma)
set(ZIMSR_UNFUSED_x86-64-v4 -mno-fma -fno-tree-vectorize)

set(ZIMSR_BUILT_LEVELS)
if(CMAKE_SIZEOF_VOID_P EQUAL 8 AND NOT ZIMSR_SANITIZE)
  set(ZIMSR_BUILT_LEVELS ${ZIMSR_LEVELS})
endif()
foreach(level IN LISTS ZIMSR_BUILT_LEVELS)
  zimsr_shared(zimsr-${level} "-march=${level};${ZIMSR_UNFUSED_${level}}" "${ZIMSR_LIBRARY_DIR}/glibc-hwcaps/${level}")
endforeach()

if(ZIMSR_STATIC)
  zimsr_library(zimsr_static STATIC "${ZIMSR_BASELINE_FLAGS}")
  target_link_libraries(zimsr_static PUBLIC m)
  set_target_properties(zimsr_static PROPERTIES ARCHIVE_OUTPUT_DIRECTORY "${ZIMSR_LIBRARY_DIR}")
  add_library(zimsr::zimsr_static ALIAS zimsr_static)
endif()
