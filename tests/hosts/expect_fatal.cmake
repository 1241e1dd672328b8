# Runs a probe that must end with status 1 after the library's fatal message.
# -DPROBE=... -DARGS=a;b -DEXPECT=text [-DEMULATOR=wine]
# Natively the text is on stderr. Under wine the message box has no display,
# so wine's relay trace of the MessageBoxA call shows text, caption and flags.
if(EMULATOR)
  set(ENV{WINEDEBUG} "+relay")
  string(REPLACE "\"" "\\\"" escaped "${EXPECT}")
  set(needles "MessageBoxA(" "\"${escaped}\"" "\"Fatal Error\",00002010)")
else()
  set(needles "Fatal Error: ${EXPECT}\n")
endif()
execute_process(COMMAND ${EMULATOR} ${PROBE} ${ARGS}
                RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err TIMEOUT 120)
if(NOT rc EQUAL 1)
  message(FATAL_ERROR "expected exit status 1, got ${rc}\n${err}")
endif()
if(EMULATOR)
  string(REGEX MATCH "[^\n]*MessageBoxA\\([^\n]*" err "${err}")
endif()
foreach(n ${needles})
  string(FIND "${err}" "${n}" at)
  if(at EQUAL -1)
    message(FATAL_ERROR "expected ${n} in: ${err}")
  endif()
endforeach()
message(STATUS "exit status 1 after: ${err}")
