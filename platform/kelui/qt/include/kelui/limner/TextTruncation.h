// How a single line of text that does not fit its rectangle is shortened: the values that
// UI_TextControlBase::SetTextTruncation takes. End and Path are what the panel uses (names and
// links lose their end; a location path keeps both ends and loses its middle).
#pragma once

#include <cstdint>

namespace limner {

enum class TextTruncation : std::uint32_t {
    None = 0,   ///< clipped at the edge
    Start = 1,  ///< "…end of the text"
    End = 2,    ///< "start of the te…"
    Path = 3,   ///< "start/…/end", cut in the middle
};

}  // namespace limner
