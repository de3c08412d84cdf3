#pragma once

#include <cstddef>
#include <map>
#include <string>

namespace Korvel::Sim {

/// The fields of a command's body: `a=b&c=d`, taken literally. Nothing is decoded: names arrive as they stand.
class Form {
public:
    /// Splits `body`. Throws Refusal when a piece has no "=" or a field is given twice.
    explicit Form(const std::string& body);

    /// Returns the value of the field `name`. Throws Refusal when it is missing, empty or no valid XML text.
    const std::string& Required(const std::string& name) const;

    /// Throws Refusal unless the field `name` is "yes" or "no".
    void RequireYesOrNo(const std::string& name) const;

    /// Tells whether the field `name` was given.
    bool Has(const std::string& name) const;

    /// Returns the number of fields.
    std::size_t Size() const;

private:
    std::map<std::string, std::string> fields;
};

}  // namespace Korvel::Sim
