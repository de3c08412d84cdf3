#pragma once

#include <list>
#include <memory>

namespace Korvel {

/// Appends an object to a list that owns its elements. A failed append destroys the object and leaves the list as it
/// was.
/// @return the object, now the list's
template <typename Object>
Object* AppendOwned(std::list<Object*>& objects, std::unique_ptr<Object> object) {
    objects.push_back(object.get());
    return object.release();
}

}  // namespace Korvel
