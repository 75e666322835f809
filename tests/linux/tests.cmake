vorn_add_test(tst_fulldisk FROM linux FOLDER fake-archiver)
add_dependencies(tst_fulldisk fakearchiver)
target_compile_definitions(tst_fulldisk PRIVATE LOAD_FACTOR=${load_factor})
vorn_add_test(tst_readonly FROM linux)
vorn_add_test(tst_archiverfaults FROM linux FOLDER faulty-archiver) # it puts its archiver there
add_dependencies(tst_archiverfaults fakearchiver)
target_compile_definitions(tst_archiverfaults PRIVATE
    FAKE_ARCHIVER_PROGRAM="$<TARGET_FILE:fakearchiver>" LOAD_FACTOR=${load_factor})
vorn_add_test(tst_archiverterminal FROM linux)
target_compile_definitions(tst_archiverterminal PRIVATE P7ZIP="${VORNUTILITY_P7ZIP}")
target_link_libraries(tst_archiverterminal PRIVATE util)
vorn_add_test(tst_load FROM linux FOLDER fake-archiver)
add_dependencies(tst_load fakearchiver)
target_compile_definitions(tst_load PRIVATE LOAD_FACTOR=${load_factor})
vorn_add_test(tst_specialfiles FROM linux)
vorn_add_test(tst_processes FROM linux)
vorn_add_test(tst_permissions FROM linux FOLDER own-archiver) # it puts its archiver there
vorn_add_test(tst_settingsfiles FROM linux)
vorn_add_test(tst_removedir FROM linux)
