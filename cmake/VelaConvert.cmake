# The sample conversion loops are compiled once for each instruction set and selected at run time.
#
# -O3 vectorises with epilogues; the casts are made harmless before they are done, so they may be done early
# (-fno-trapping-math); a product and a sum stay two operations on every processor (-ffp-contract=off).
set(vela_convert_options -O3 -funroll-loops -fno-trapping-math -ffp-contract=off)
set(vela_convert_folder "${CMAKE_CURRENT_SOURCE_DIR}/sources/binary_io/types")

function(vela_add_convert_variants target)
  set(baseline "${vela_convert_folder}/convert_baseline.cpp")
  set_source_files_properties("${baseline}" PROPERTIES
    COMPILE_OPTIONS "${vela_convert_options}" SKIP_PRECOMPILE_HEADERS ON)
  if(CMAKE_SYSTEM_PROCESSOR MATCHES "^(x86_64|AMD64)$")
    set(avx2 "${vela_convert_folder}/convert_avx2.cpp")
    set_source_files_properties("${avx2}" PROPERTIES
      COMPILE_OPTIONS "${vela_convert_options};-mavx2" SKIP_PRECOMPILE_HEADERS ON)
    target_sources(${target} PRIVATE "${avx2}")
    target_compile_definitions(${target} PRIVATE VELA_X86_VARIANTS)
  endif()
endfunction()
