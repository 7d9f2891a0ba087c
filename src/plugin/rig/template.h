// SPDX-License-Identifier: MIT
// Templates: the list of guide points of each kind of rig, for a figure of unit height.
#pragma once

#include "plugin/rig/rig_point.h"
#include "plugin/rig/rig_type.h"
#include "plugin/rig/template_params.h"

namespace tavrilon {

/// More points than any usable rig needs; counts beyond it (99 arms of 99 fingers) give a template cut short.
inline constexpr size_t kMaxTemplatePoints = 65536;

/// The points of a rig of `type`, parents before their children. A point that has a position of its own and whose
/// name stands in `saved` takes over that point's selection and, when it was moved from where its template had put it,
/// its position; a new one is selected when it belongs to the component `params[kSelectedComponent]`. Types that are
/// names only give just the extras.
RigPoints BuildTemplate(RigType type, const TemplateParams& params, const RigPoints& saved,
                        const std::vector<RigExtra>& extras);

}  // namespace tavrilon
