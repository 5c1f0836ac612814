# Fails if the machine code of any of the plug-in binaries (MODULES, a list) holds a fused
# multiply-add (x86 FMA3/FMA4, AArch64 scalar and vector forms): one rounding instead of two would
# change the output's bits.
foreach(module ${MODULES})
  execute_process(COMMAND ${OBJDUMP} -d --no-show-raw-insn ${module}
                  OUTPUT_VARIABLE code RESULT_VARIABLE rc)
  if(NOT rc EQUAL 0 OR code STREQUAL "")
    message(FATAL_ERROR "${OBJDUMP} could not disassemble ${module}")
  endif()
  string(REGEX MATCHALL "[ \t]v?fn?m(add|sub|la|ls)[a-z0-9]*[ \t][^\n]*" fused "${code}")
  if(fused)
    list(LENGTH fused count)
    list(GET fused 0 first)
    message(FATAL_ERROR "${count} fused multiply-add instructions in ${module}, e.g.${first}")
  endif()
  string(REGEX MATCHALL "\n *[0-9a-f]+:" instructions "${code}")
  list(LENGTH instructions count)
  message(STATUS "no fused multiply-add among ${count} instructions of ${module}")
endforeach()
