# The manual page and the completions, made from the definitions of the command line.

add_executable(lumo_generate_documents
    src/cli/command_tree.cpp
    src/cli/completion_bash.cpp
    src/cli/completion_zsh.cpp
    src/cli/generate_documents.cpp
    src/cli/man_page.cpp)
target_link_libraries(lumo_generate_documents PRIVATE lumo_program)

set(documents ${CMAKE_CURRENT_BINARY_DIR}/documents)
file(MAKE_DIRECTORY ${documents})
find_program(LUMO_GZIP gzip REQUIRED)
add_custom_command(
    OUTPUT ${documents}/lumo.1 ${documents}/lumo.1.gz ${documents}/lumo.bash ${documents}/_lumo
    COMMAND lumo_generate_documents ${documents}
    COMMAND ${LUMO_GZIP} -9nkf ${documents}/lumo.1
    DEPENDS lumo_generate_documents
    COMMENT "Generating the manual page and the completions of lumo"
    VERBATIM)
add_custom_target(lumo_documents ALL DEPENDS ${documents}/lumo.1.gz)

install(FILES ${documents}/lumo.1.gz
    DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT program)
install(FILES ${documents}/lumo.bash
    DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME lumo COMPONENT program)
# Where Debian's zsh looks for what packages bring.
install(FILES ${documents}/_lumo
    DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions COMPONENT program)
