# Runs `lotwise-cli start --data <folder>` twice on a fresh folder and checks
# the exit codes and the lines that tell what happened.
file(REMOVE_RECURSE ${WORK})
file(MAKE_DIRECTORY ${WORK}/tmp)
set(ENV{TMPDIR} ${WORK}/tmp)

function(run_start expected_central expected_usage)
  execute_process(COMMAND ${CLI} start --data ${WORK}/data
                  RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(NOT rc EQUAL 0)
    message(FATAL_ERROR "exit code ${rc}\nstdout:\n${out}\nstderr:\n${err}")
  endif()
  foreach(line
          "data folder for this run: ${WORK}/data/"
          "report database created: ${WORK}/tmp/~LW"
          "Security Symbols File ${expected_central}: ${WORK}/data/CENTRAL.MDB"
          "data version: LW2005.20"
          "taxpayers reconciled: 0 indexed, 0 mismatches left as they are"
          "usage count: ${expected_usage}\n"
          "state: CLIENTCLOSED"
          "shut down"
          "scratch report database removed: ${WORK}/tmp/~LW")
    string(FIND "${out}" "${line}" at)
    if(at EQUAL -1)
      message(FATAL_ERROR "missing \"${line}\"\nstdout:\n${out}\nstderr:\n${err}")
    endif()
  endforeach()
  if(NOT err STREQUAL "")
    message(FATAL_ERROR "unexpected messages:\n${err}")
  endif()
endfunction()

run_start(created 1)
run_start(opened 2)

file(GLOB leftovers ${WORK}/tmp/*)
if(leftovers)
  message(FATAL_ERROR "scratch files left behind: ${leftovers}")
endif()
