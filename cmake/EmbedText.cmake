# quorin_embed_text(TARGET NAMESPACE SYMBOL FILE): makes FILE part of the library TARGET, as
# `extern const std::string_view SYMBOL` in NAMESPACE. The text is embedded byte for byte; a change
# of the file rebuilds the target.
function(quorin_embed_text target namespace symbol file)
  get_filename_component(input ${file} ABSOLUTE)
  set(output ${CMAKE_CURRENT_BINARY_DIR}/${symbol}.embedded.cpp)
  add_custom_command(
    OUTPUT ${output}
    COMMAND ${CMAKE_COMMAND} -DINPUT=${input} -DOUTPUT=${output} -DNAMESPACE=${namespace}
            -DSYMBOL=${symbol} -P ${CMAKE_SOURCE_DIR}/cmake/EmbedTextNow.cmake
    DEPENDS ${input} ${CMAKE_SOURCE_DIR}/cmake/EmbedTextNow.cmake
    COMMENT "Embedding ${file}"
    VERBATIM)
  target_sources(${target} PRIVATE ${output})
endfunction()
