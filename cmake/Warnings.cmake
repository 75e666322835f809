# Sets the compiler options that all targets of the project share. Programs that use the installed
# library do not get them. A folder that sets vorn_allow_conversions gets no warning about a conversion
# that may change a number.
function(vorn_set_compile_options target)
    set_target_properties(${target} PROPERTIES
        CXX_STANDARD 17
        CXX_STANDARD_REQUIRED ON
        CXX_EXTENSIONS OFF
        AUTOMOC ON)
    target_compile_definitions(${target} PRIVATE
        QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_CAST_FROM_BYTEARRAY
        QT_NO_URL_CAST_FROM_STRING QT_NO_KEYWORDS QT_NO_FOREACH QT_STRICT_ITERATORS)
    if(MSVC)
        target_compile_options(${target} PRIVATE /W4 /permissive- /utf-8)
        if(VORNUTILITY_WARNINGS_AS_ERRORS)
            target_compile_options(${target} PRIVATE /WX)
        endif()
    else()
        set(conversion -Wconversion)
        if(vorn_allow_conversions)
            set(conversion)
        endif()
        # The last: clang warns of qCDebug(), a macro that Qt 5 calls with fewer arguments than C++17 allows.
        target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic ${conversion} -Wshadow
            -Wno-gnu-zero-variadic-macro-arguments)
        if(VORNUTILITY_WARNINGS_AS_ERRORS)
            target_compile_options(${target} PRIVATE -Werror)
        endif()
    endif()
    if(VORNUTILITY_SANITIZE)
        target_compile_options(${target} PRIVATE
            -fsanitize=${VORNUTILITY_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
        target_link_options(${target} PRIVATE -fsanitize=${VORNUTILITY_SANITIZE})
    endif()
endfunction()
