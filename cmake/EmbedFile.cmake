# velkrund_embed_file(<target> <file> <name>): the bytes of the file become the array velkrund::<name> of the target, and
# their number velkrund::<name>Size. Made anew by the build when the file changes, by this same file run as a script.

if(CMAKE_SCRIPT_MODE_FILE)
  file(READ "${INPUT}" Bytes HEX)
  string(REPEAT "." 48 Row)
  string(REGEX REPLACE "(${Row})" "\\1\n" Bytes "${Bytes}")
  string(REGEX REPLACE "([0-9a-f][0-9a-f])" "0x\\1," Bytes "${Bytes}")
  file(WRITE "${OUTPUT}"
"namespace velkrund {

extern const unsigned char ${NAME}[];
extern const unsigned long ${NAME}Size;
const unsigned char ${NAME}[] = {
${Bytes}
};
const unsigned long ${NAME}Size = sizeof ${NAME};

}  // namespace velkrund
")
  return()
endif()

set(VELKRUND_EMBED_FILE "${CMAKE_CURRENT_LIST_FILE}")

function(velkrund_embed_file Target File Name)
  set(Output "${PROJECT_BINARY_DIR}/embedded/${Name}.cpp")
  add_custom_command(OUTPUT "${Output}"
                     COMMAND "${CMAKE_COMMAND}" "-DINPUT=${PROJECT_SOURCE_DIR}/${File}" "-DOUTPUT=${Output}"
                             "-DNAME=${Name}" -P "${VELKRUND_EMBED_FILE}"
                     DEPENDS "${PROJECT_SOURCE_DIR}/${File}" "${VELKRUND_EMBED_FILE}"
                     COMMENT "Embedding ${File}" VERBATIM)
  target_sources(${Target} PRIVATE "${Output}")
endfunction()
