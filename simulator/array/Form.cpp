#include "array/Form.h"

#include <algorithm>

#include "array/Refusal.h"
#include "array/ReplyWriter.h"

namespace Korvel::Sim {

Form::Form(const std::string& body) {
    for (std::size_t begin = 0; begin < body.size();) {
        const std::size_t end = std::min(body.find('&', begin), body.size());
        const std::string piece = body.substr(begin, end - begin);
        const std::size_t equals = piece.find('=');
        if (equals == std::string::npos) {
            throw Refusal("Malformed request: a field has no value");
        }
        if (!fields.emplace(piece.substr(0, equals), piece.substr(equals + 1)).second) {
            throw Refusal("Malformed request: a field is given twice");
        }
        begin = end + 1;
    }
}

const std::string& Form::Required(const std::string& name) const {
    const auto field = fields.find(name);
    if (field == fields.end() || field->second.empty()) {
        throw Refusal("Field " + name + " is missing");
    }
    if (!ReplyWriter::CanHold(field->second)) {
        throw Refusal("Field " + name + " holds characters that are not allowed");
    }
    return field->second;
}

void Form::RequireYesOrNo(const std::string& name) const {
    const std::string& value = Required(name);
    if (value != "yes" && value != "no") {
        throw Refusal("Field " + name + " must be yes or no");
    }
}

bool Form::Has(const std::string& name) const {
    return fields.contains(name);
}

std::size_t Form::Size() const {
    return fields.size();
}

}  // namespace Korvel::Sim
