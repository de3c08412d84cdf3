#pragma once

#include <cstddef>
#include <string>
#include <type_traits>

namespace Korvel {

/// A printf format that the compiler has checked against the arguments it is used with.
///
///     void Report(KFormat<std::string, int> format, const std::string& name, int status);
///     Report("%s ended with %d", name, status);  // compiles
///     Report("%s ended with %s", name, status);  // does not: %s does not fit an int
///     Report("%s ended", name, status);          // does not: the status is not shown (KPartialFormat allows it)
///
/// Only a literal can become one, so no text from outside is ever a format. The conversions are those that the library
/// needs: %s for texts, %d for int, %ld for long. This one need not show every argument, as in a table some of whose
/// rows have nothing to fill in; printf ignores those that are left.
template <typename... Arguments>
class KPartialFormat {
public:
    consteval KPartialFormat(const char* literal) : text(literal) {
        constexpr const char* expected[] = {Conversion<Arguments>()..., nullptr};
        const char* const* next = expected;
        for (const char* at = literal; *at != '\0'; ++at) {
            if (*at != '%') {
                continue;
            }
            if (*next == nullptr) {
                throw "the format has more conversions than arguments";
            }
            for (const char* wanted = *next++; *wanted != '\0'; ++wanted) {
                if (*++at != *wanted) {
                    throw "a conversion does not fit its argument";
                }
            }
        }
    }

    /// @return the format as printf takes it
    constexpr const char* Text() const { return text; }

private:
    template <typename Argument>
    static consteval const char* Conversion() {
        if constexpr (std::is_same_v<Argument, int>) {
            return "d";
        } else if constexpr (std::is_same_v<Argument, long>) {
            return "ld";
        } else {
            static_assert(std::is_convertible_v<const Argument&, std::string> ||
                              std::is_convertible_v<const Argument&, const char*>,
                          "formats take texts, int and long");
            return "s";
        }
    }

    const char* text;
};

/// A format that shows each of its arguments.
template <typename... Arguments>
class KFormat : public KPartialFormat<Arguments...> {
public:
    consteval KFormat(const char* literal) : KPartialFormat<Arguments...>(literal) {
        std::size_t conversions = 0;
        for (const char* at = literal; *at != '\0'; ++at) {
            conversions += *at == '%' ? 1 : 0;
        }
        if (conversions != sizeof...(Arguments)) {
            throw "the format does not show every argument";
        }
    }
};

/// The formats that go with arguments deduced elsewhere in the same call.
template <typename... Arguments>
using KFormatFor = KFormat<std::type_identity_t<Arguments>...>;
template <typename... Arguments>
using KPartialFormatFor = KPartialFormat<std::type_identity_t<Arguments>...>;

/// What a printf function gets for an argument: a text's characters, a number as it is.
inline const char* Printable(const std::string& argument) {
    return argument.c_str();
}
inline const char* Printable(const char* argument) {
    return argument;
}
inline int Printable(int argument) {
    return argument;
}
inline long Printable(long argument) {
    return argument;
}

}  // namespace Korvel
