#pragma once

#include "result/promotion_check.h"

namespace vostrand {

/// Removes from the output directory what the runs other than the best left there: R.ncd and the like, files
/// and links alone, and the folder R.dir. No link is followed, and whatever the result is made of stays. Does
/// nothing unless the check was good. Returns what could not be removed.
std::vector<std::string> RetainBest(const PromotionReport& report, const Promotion& promotion,
                                    const std::vector<std::string>& runs);

}  // namespace vostrand
