// SPDX-License-Identifier: MIT
// Work that waits until a message has reached everyone. A handler that evaluates while its message is still on the way
// reads what others keep and have not been told to drop; what it makes them keep anew is not dropped again, since a
// message passes each link once.
#pragma once

namespace corvanta {

class ReferenceTarget;

/// Runs `work(owner)` when the outermost message has been delivered, in the order of asking; at once while none is on
/// its way. `owner` is kept alive until then.
void AfterDelivery(ReferenceTarget* owner, void (*work)(ReferenceTarget* owner));

/// Makes the messages sent in its lifetime one delivery.
class DeliveryScope {
 public:
  DeliveryScope();
  ~DeliveryScope();
  DeliveryScope(const DeliveryScope&) = delete;
};

}  // namespace corvanta
