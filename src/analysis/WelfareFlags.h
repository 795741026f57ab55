#pragma once

// Which kinds of the welfare scheme are evaluated ("krów mamek", "opasów",
// "krów mlecznych"); they decide which blocks of the group catalogue exist.
struct WelfareFlags {
    bool krowMamek = true;
    bool opasow = true;
    bool krowMlecznych = true;

    bool operator==(const WelfareFlags&) const = default;
};
