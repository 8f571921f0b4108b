# Run by cpack between installing and packing: what Debian asks of a package and nobody else needs.
set(source_dir ${CMAKE_CURRENT_LIST_DIR}/..)
set(share ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/usr/share)
set(doc ${share}/doc/vostrand)
file(MAKE_DIRECTORY ${doc})
configure_file(${source_dir}/packaging/copyright ${doc}/copyright COPYONLY)
configure_file(${source_dir}/CHANGELOG.md ${doc}/CHANGELOG.md COPYONLY)
string(TIMESTAMP today "%a, %d %b %Y %H:%M:%S +0000" UTC)
file(WRITE ${doc}/changelog "vostrand (${CPACK_PACKAGE_VERSION}) unstable; urgency=low\n
  * What changed is told in CHANGELOG.md.gz, beside this file.\n
 -- ${CPACK_PACKAGE_CONTACT}  ${today}\n")
file(GLOB pages ${share}/man/man1/*.1)
execute_process(COMMAND gzip -9nf ${pages} ${doc}/CHANGELOG.md ${doc}/changelog COMMAND_ERROR_IS_FATAL ANY)
# Debian's zsh does not look into the folder that others do.
file(RENAME ${share}/zsh/site-functions ${share}/zsh/vendor-completions)
# Meant so: it is started for every command, and looking up libraries takes longer than its work.
file(WRITE ${share}/lintian/overrides/vostrand "vostrand: statically-linked-binary [usr/bin/vostrand-step]\n")
