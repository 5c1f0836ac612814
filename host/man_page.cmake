# Writes tarnwell.1.gz from the command's own help: help2man turns `tarnwell --help` and
# `--version` into the page, and every subcommand listed there adds its `--help` under COMMANDS,
# so the page never says what the command does not.
#
# cmake -DCOMMAND=<tarnwell> [-DEMULATOR=<runner;args>] -DWORK=<folder> -DOUTPUT=<tarnwell.1.gz>
#       -P man_page.cmake
#
# help2man runs the program it documents. The command's answers are captured first (through the
# emulator in a cross build) and served to help2man by a stand-in script, so the page can be
# made wherever the build runs.
cmake_minimum_required(VERSION 3.25)

find_program(HELP2MAN help2man REQUIRED)
find_program(GZIP gzip REQUIRED)

function(run_command out)
  execute_process(COMMAND ${EMULATOR} ${COMMAND} ${ARGN}
                  OUTPUT_VARIABLE text RESULT_VARIABLE result)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "tarnwell ${ARGN} failed (${result})")
  endif()
  set(${out} "${text}" PARENT_SCOPE)
endfunction()

# Help text set verbatim: roff escapes for backslashes and for lines that would read as requests.
function(as_roff out text)
  string(REPLACE "\\" "\\e" text "${text}")
  string(REGEX REPLACE "(^|\n)([.'])" "\\1\\\\&\\2" text "${text}")
  set(${out} ".nf\n${text}.fi\n" PARENT_SCOPE)
endfunction()

file(REMOVE_RECURSE ${WORK})
file(MAKE_DIRECTORY ${WORK})
run_command(help --help)
run_command(version --version)
file(WRITE ${WORK}/help.txt "${help}")
file(WRITE ${WORK}/version.txt "${version}")

string(REGEX MATCH "\nSubcommands:\n(  [^\n]*\n)+" listed "${help}")
string(REGEX MATCHALL "\n  [a-z][a-z0-9-]*" names "${listed}")
if(NOT names)
  message(FATAL_ERROR "no subcommands found in tarnwell --help")
endif()
set(commands "[COMMANDS]\n")
foreach(name IN LISTS names)
  string(STRIP "${name}" name)
  run_command(sub_help ${name} --help)
  as_roff(sub_help "${sub_help}")
  string(APPEND commands ".SS ${name}\n${sub_help}")
endforeach()
file(WRITE ${WORK}/sections.h2m "${commands}\n[SEE ALSO]\n.BR lv2ls (1),\n.BR jalv (1)\n")

file(WRITE ${WORK}/stand-in/tarnwell
     "#!/bin/sh\ncase \"$1\" in\n  --version) cat '${WORK}/version.txt' ;;\n"
     "  *) cat '${WORK}/help.txt' ;;\nesac\n")
file(CHMOD ${WORK}/stand-in/tarnwell PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE)

get_filename_component(page ${OUTPUT} NAME_WLE)
execute_process(
  COMMAND ${HELP2MAN} --no-info --section=1 "--source=NEW Tarnwell"
          "--name=render audio through the NEW Tarnwell bass amp, describe and draw it"
          --include=${WORK}/sections.h2m --output=${WORK}/${page} ${WORK}/stand-in/tarnwell
  RESULT_VARIABLE result)
if(NOT result EQUAL 0)
  message(FATAL_ERROR "help2man failed (${result})")
endif()
# -n keeps the name and time out of the archive, so the same help gives the same bytes.
execute_process(COMMAND ${GZIP} -9nc ${WORK}/${page} OUTPUT_FILE ${OUTPUT} RESULT_VARIABLE result)
if(NOT result EQUAL 0)
  message(FATAL_ERROR "gzip failed (${result})")
endif()
