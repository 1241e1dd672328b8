# Runs a probe that must end with status 1 after the library's fatal message.
# -DPROBE=... -DARGS=a;b -DEMULATOR=... -DEXPECT=text (checked when not empty)
execute_process(COMMAND ${EMULATOR} ${PROBE} ${ARGS}
                RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err TIMEOUT 120)
message(STATUS "exit status ${rc}; stderr: ${err}")
if(NOT rc EQUAL 1)
  message(FATAL_ERROR "expected exit status 1, got ${rc}")
endif()
if(EXPECT)
  string(FIND "${err}" "${EXPECT}" at)
  if(at EQUAL -1)
    message(FATAL_ERROR "expected the message: ${EXPECT}")
  endif()
endif()
