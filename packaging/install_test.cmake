# Installs BUILD_DIR into a directory of its own and looks for what users look for.
set(prefix ${BUILD_DIR}/install_test)
file(REMOVE_RECURSE ${prefix})
execute_process(COMMAND ${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${prefix}
                OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)

foreach(file IN ITEMS
        sbin/zemad_logfile bin/zemad_fmt bin/zem_server
        share/man/man1/zemad_fmt.1 share/man/man1/zem_server.1 share/man/man8/zemad_logfile.8
        share/bash-completion/completions/zemad_fmt share/zsh/site-functions/_zemad_fmt
        share/doc/zemad_logfile/README.md share/doc/zemad_logfile/docs/writing-formats.md
        share/doc/zemad_logfile/etc/zemad_logfile.fmt)
  if(NOT EXISTS ${prefix}/${file})
    message(FATAL_ERROR "not installed: ${file}")
  endif()
endforeach()

# The installed tool reads the installed configuration.
set(etc ${prefix}/share/doc/zemad_logfile/etc/zemad_logfile)
execute_process(COMMAND ${prefix}/bin/zemad_fmt check ${etc}.fmt --cds ${etc}.cds --conf ${etc}.conf
                COMMAND_ERROR_IS_FATAL ANY)
file(REMOVE_RECURSE ${prefix})
