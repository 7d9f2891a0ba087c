// SPDX-License-Identifier: MIT
#include "plugin/controllers/gimbal_proxy.h"

#include "host/scene/core_interface.h"

namespace tavrilon {

using namespace corvanta;

namespace {
bool proxyOn = true;
}

GimbalProxyOff::GimbalProxyOff() : was_(proxyOn) { proxyOn = false; }
GimbalProxyOff::~GimbalProxyOff() { proxyOn = was_; }

bool WantsGimbalProxy() { return proxyOn && GetCOREInterface()->GetRefCoordSys() == RefCoordSys::Gimbal; }

// The proxy needs the host's list and Euler controllers, which are not there yet.
Control* ShowGimbalProxy(const Matrix3&, Control*, TimeValue) { return nullptr; }

}  // namespace tavrilon
