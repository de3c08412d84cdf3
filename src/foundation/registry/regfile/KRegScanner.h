#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace Korvel {

/// Walks through the lines of a registry file and takes them apart from left to right. Whatever doesn't stand as it
/// should throws KRegError with the line's number.
class KRegScanner {
public:
    /// @param filePath the file's path, for faults
    /// @param fileText UTF-8; lines end with a line feed, with or without a carriage return before it
    KRegScanner(std::string filePath, std::string fileText);
    KRegScanner(const KRegScanner&) = delete;
    KRegScanner& operator=(const KRegScanner&) = delete;

    /// Goes to the beginning of the next line.
    /// @return false after the last one
    bool NextLine();

    /// @return what is left of the line after blanks
    std::string_view Rest();

    /// Takes `word` after blanks, if that comes next.
    bool Take(std::string_view word);

    /// Takes a key in brackets after its opening bracket, up to its closing bracket: the first after which nothing but
    /// a comment follows, since names may hold brackets.
    std::string TakeKey();

    /// Takes a text after its opening quote, up to its closing quote, with `\\` and `\"` resolved.
    std::string TakeQuoted();

    /// Takes a hexadecimal number.
    unsigned long TakeHex(std::size_t mostDigits);

    /// Takes hexadecimal bytes with commas between them; a backslash at the end of a line goes on with the next.
    std::vector<unsigned char> TakeHexBytes();

    /// Makes sure that nothing but a comment is left of the line.
    void TakeEnd();

    /// @return the line's number, from 1; 0 before the first NextLine()
    std::size_t LineNumber() const { return lineNumber; }

    /// @return where the rest of the line begins in the file's text, in bytes; only after a NextLine() that found one
    std::size_t Position() const { return static_cast<std::size_t>(rest.data() - text.data()); }

    /// @return where what was taken so far ends, without the blanks after it
    std::size_t EndOfTaken() const { return text.find_last_not_of(" \t", Position() - 1) + 1; }

    [[noreturn]] void Fail(const std::string& fault) const;

private:
    bool OnlyCommentFollows(std::string_view remainder) const;
    void SkipContinuation();

    std::string path;
    std::string text;
    std::string_view following;  // the lines after this one
    std::string_view rest;       // of this line
    std::size_t lineNumber = 0;
};

}  // namespace Korvel
