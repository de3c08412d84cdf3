# What every target of the project is compiled and linked with. A target takes it by linking KorvelOptions privately.
add_library(KorvelOptions INTERFACE)

if(MSVC)
    target_compile_options(KorvelOptions INTERFACE /W4 /utf-8 /guard:cf $<$<BOOL:${KORVEL_WARNINGS_AS_ERRORS}>:/WX>)
    target_link_options(KorvelOptions INTERFACE /guard:cf /CETCOMPAT)
    # getenv is standard C++, and min and max are no macros.
    target_compile_definitions(KorvelOptions INTERFACE _CRT_SECURE_NO_WARNINGS NOMINMAX)
else()
    # GCC 12 warns of overlapping copies inside its own std::string (-Wrestrict) when it optimizes.
    target_compile_options(KorvelOptions INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion
                           $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>
                           $<$<BOOL:${KORVEL_WARNINGS_AS_ERRORS}>:-Werror>)
    # What is shipped is hardened; scripts/lib/check-hardening reads it from the files. A fortified library function needs
    # an optimizing compiler, and a sanitizer looks closer by itself.
    target_compile_options(KorvelOptions INTERFACE -fstack-protector-strong)
    if(NOT KORVEL_SANITIZE)
        target_compile_options(KorvelOptions INTERFACE "$<$<NOT:$<CONFIG:Debug>>:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=2>")
    endif()
    if(WIN32)
        target_link_options(KorvelOptions INTERFACE -fstack-protector-strong -Wl,--dynamicbase,--high-entropy-va,--nxcompat)
    else()
        target_compile_options(KorvelOptions INTERFACE -fstack-clash-protection -fcf-protection=full)
        target_link_options(KorvelOptions INTERFACE -Wl,-z,relro,-z,now,-z,noexecstack)
    endif()
endif()

if(KORVEL_SANITIZE)
    # A call at each comparison would cost a fuzzer half its speed; the words it would find stand in the seeds.
    target_compile_options(KorvelOptions INTERFACE -fsanitize=${KORVEL_SANITIZE}
                           $<$<BOOL:${KORVEL_BUILD_FUZZERS}>:-fno-sanitize-coverage=trace-cmp> -fno-sanitize-recover=all
                           -fno-omit-frame-pointer -fno-optimize-sibling-calls)
    target_link_options(KorvelOptions INTERFACE -fsanitize=${KORVEL_SANITIZE})
endif()
