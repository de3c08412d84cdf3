#pragma once

#include <string>

namespace Korvel::Ctl {

/// Keeps what the XML library has to say of a bad reply away from stderr, where an array's text could steer the
/// terminal. For the thread that calls it, from then on.
void CollectXmlComplaints();

/// @return the first complaint since the last call on this thread, one line; empty when there is none
std::string TakeXmlComplaint();

}  // namespace Korvel::Ctl
