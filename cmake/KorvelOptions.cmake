# What every target of the project is compiled with. A target takes it by linking KorvelOptions privately.
add_library(KorvelOptions INTERFACE)

if(MSVC)
    target_compile_options(KorvelOptions INTERFACE /W4 /utf-8 $<$<BOOL:${KORVEL_WARNINGS_AS_ERRORS}>:/WX>)
else()
    # GCC 12 warns of overlapping copies inside its own std::string (-Wrestrict) when it optimizes.
    target_compile_options(KorvelOptions INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion
                           $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>
                           $<$<BOOL:${KORVEL_WARNINGS_AS_ERRORS}>:-Werror>)
endif()

if(KORVEL_SANITIZE)
    target_compile_options(KorvelOptions INTERFACE -fsanitize=${KORVEL_SANITIZE} -fno-sanitize-recover=all
                           -fno-omit-frame-pointer -fno-optimize-sibling-calls)
    target_link_options(KorvelOptions INTERFACE -fsanitize=${KORVEL_SANITIZE})
endif()
