# Flags for the project's own targets: linked privately and only while building, so that nothing of
# it reaches a host that uses the installed package.

add_library(tul-compile-settings INTERFACE)
target_compile_features(tul-compile-settings INTERFACE cxx_std_17)
target_compile_definitions(
    tul-compile-settings
    INTERFACE
        QT_NO_CAST_FROM_ASCII
        QT_NO_CAST_FROM_BYTEARRAY
        QT_NO_CAST_TO_ASCII
        QT_NO_FOREACH
        QT_NO_KEYWORDS
        QT_NO_NARROWING_CONVERSIONS_IN_CONNECT
        QT_NO_URL_CAST_FROM_STRING
        QT_STRICT_ITERATORS
)
target_compile_options(
    tul-compile-settings
    INTERFACE
        -Wall
        -Wextra
        -Wpedantic
        -Wcast-align
        -Wnon-virtual-dtor
        -Woverloaded-virtual
        -Wshadow
        -Wsuggest-override
        -Wundef
        -Wzero-as-null-pointer-constant
        $<$<BOOL:${TUL_WARNINGS_AS_ERRORS}>:-Werror>
)
if(TUL_SANITIZERS)
    set(sanitizer_flags
        -fsanitize=${TUL_SANITIZERS}
        -fno-sanitize-recover=all
        -fno-omit-frame-pointer
    )
    target_compile_options(tul-compile-settings INTERFACE ${sanitizer_flags})
    target_link_options(tul-compile-settings INTERFACE ${sanitizer_flags})
else()
    # The sanitizers leave their runtime to the executable.
    target_link_options(tul-compile-settings INTERFACE -Wl,--no-undefined)
endif()

# Prepares a library or program of this project.
function(tul_configure_target target)
    set_target_properties(
        ${target}
        PROPERTIES
            AUTOMOC ON
            CXX_EXTENSIONS OFF
            CXX_VISIBILITY_PRESET hidden
            VISIBILITY_INLINES_HIDDEN ON
            POSITION_INDEPENDENT_CODE ON
    )
    target_link_libraries(${target} PRIVATE $<BUILD_INTERFACE:tul-compile-settings>)
endfunction()
