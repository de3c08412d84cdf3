#include "KForm.h"

#include <algorithm>

#include "KRefusal.h"
#include "KReplyWriter.h"

namespace Korvel {

KForm::KForm(const std::string& body) {
    for (std::size_t begin = 0; begin < body.size();) {
        const std::size_t end = std::min(body.find('&', begin), body.size());
        const std::string piece = body.substr(begin, end - begin);
        const std::size_t equals = piece.find('=');
        if (equals == std::string::npos) {
            throw KRefusal("Malformed request: a field has no value");
        }
        if (!fields.emplace(piece.substr(0, equals), piece.substr(equals + 1)).second) {
            throw KRefusal("Malformed request: a field is given twice");
        }
        begin = end + 1;
    }
}

const std::string& KForm::Required(const std::string& name) const {
    const auto field = fields.find(name);
    if (field == fields.end() || field->second.empty()) {
        throw KRefusal("Field " + name + " is missing");
    }
    if (!KReplyWriter::CanHold(field->second)) {
        throw KRefusal("Field " + name + " holds characters that are not allowed");
    }
    return field->second;
}

void KForm::RequireYesOrNo(const std::string& name) const {
    const std::string& value = Required(name);
    if (value != "yes" && value != "no") {
        throw KRefusal("Field " + name + " must be yes or no");
    }
}

bool KForm::Has(const std::string& name) const {
    return fields.contains(name);
}

std::size_t KForm::Size() const {
    return fields.size();
}

}  // namespace Korvel
