// The signs beyond ASCII that the stroke font has: drawn ones, in the form of its letters, and
// letters with a mark above or below. All others are a box.
#pragma once

#include <string_view>

struct gx_stroke_sign_t {
  char32_t code = 0;
  std::string_view
      drawing;  // gx/display/strokes/stroke_font.cpp says how; a copy of `like` when it is ""
  char like = ' ';
};

inline constexpr gx_stroke_sign_t gx_stroke_signs[] = {
    // Signs of Latin-1.
    {U'¡', "6k6j 6g60"},
    {U'¢', "cc8e4e0a044080c4 8j60"},
    {U'£', "ai8k6k4i4400c0 0a8a"},
    {U'¥', "0k6ack 6a60 0aca 06c6"},
    {U'§', "ai8k4k2i2gaca987 4d2b28a4a2804022"},
    {U'©', "4080c4cg8k4k0g0440 8d4d4787"},
    {U'«', "6e2a66 ce8ac6"},
    {U'¬', "0cccc6"},
    {U'®', "4080c4cg8k4k0g0440 464e8e8a4a86"},
    {U'°', "2i4k6k8i8g6e4e2g2i"},
    {U'±', "6k66 0dcd 02c2"},
    {U'²', "0i2k4k6i6h0c6c"},
    {U'³', "0k6k3h6f6d4c2c0d"},
    {U'µ', "0e00 064484c8 cec4e4"},
    {U'·', "5a7a7c5c5a"},
    {U'¹', "2i4k4c 2c6c"},
    {U'»', "0e4a06 6eaa66"},
    {U'¼', "0i2k2e 00ck b0b883c3"},
    {U'½', "0i2k2e 00ck 8798b8c7c580c0"},
    {U'¿', "6k6i 6f6c0a044080c4"},
    {U'×', "0ec2 02ce"},
    {U'÷', "5g7g7e5e5g 0aca 5474725254"},
    {U'Æ', "006k60c0 6kck 6aba 3767"},
    {U'Ð', "000k6kcec66000 0a6a"},
    {U'Ø', "4080c4cg8k4k0g0440 00ck"},
    {U'Þ', "0k00 0g8gcec88606"},
    {U'ß', "000g4k8kaiae7c 7cc8c48050"},
    {U'æ', "1e5e6c623003053767 67c7cb9e6c 6290c0"},
    {U'ø', "4080c4ca8e4e0a0440 00ce"},
    {U'þ', "0k00 0a4e8ecac4804004"},
    {U'ł', "4k4480a0 18ad"},
    {U'Ł', "0k00c0 067c"},
    // Greek letters.
    {U'Γ', "000kckcg"},
    {U'Δ', "006kc000"},
    {U'Θ', "4080c4cg8k4k0g0440 4a8a"},
    {U'Λ', "006kc0"},
    {U'Ξ', "0kck 2aaa 00c0"},
    {U'Π', "000kckc0"},
    {U'Σ', "ck0k6a00c0"},
    {U'Φ', "6k60 4g0d074484c7cd8g4g"},
    {U'Ψ', "6k60 0k0b4787cbck"},
    {U'Ω', "004043080g4k8kcgc88380c0"},
    {U'α', "ce826030030b3e6e8cc0"},
    {U'β', "000g4k8kaiae8c4c 8ccac4804004"},
    {U'γ', "0e6460 ce64"},
    {U'δ', "ak4k3ic9c4804004084c8c"},
    {U'ε', "cc9e4e1c193787 3705023090c2"},
    {U'ζ', "3kbk2b07044282a0"},
    {U'η', "0e04 0a4e8ecac0"},
    {U'θ', "4080c4cg8k4k0g0440 0aca"},
    {U'ι', "5e527090"},
    {U'κ', "0e00 ce06 49c0"},
    {U'λ', "0k3kc0 6d00"},
    {U'μ', "0e00 064484c8 cec4e4"},
    {U'ν', "0e2e60ce"},
    {U'ξ', "ak3k1i1g3e9e 3e0b084686b39050"},
    {U'π', "0ece 3e30 9e92b0"},
    {U'ρ', "000a4e8ecac8844408"},
    {U'σ', "ce4e0a044080c4ca8e"},
    {U'τ', "0ece 6e6280"},
    {U'υ', "0e044080c4ce"},
    {U'φ', "6k60 4f0b074383c7cb8f4f"},
    {U'ψ', "6k60 0e084484c8ce"},
    {U'ω', "2e0a04204064 6480a0c4caae 6469"},
    {U'ϕ', "6k60 4f0b074383c7cb8f4f"},
    // Punctuation.
    {U'–', "0aca"},
    {U'—', "0aka"},
    {U'‘', "6k6g"},
    {U'’', "6k6g"},
    {U'“', "4k4g 8k8g"},
    {U'”', "4k4g 8k8g"},
    {U'„', "4440 8480"},
    {U'•', "4b6d8b694b"},
    {U'…', "0010 5060 b0c0"},
    {U'′', "8k6g"},
    {U'″', "6k4g ak8g"},
    {U'€', "ci9k6k3g346090c2 0c9c 0898"},
    {U'™', "0k4k 2k2e 6e6k9gckce"},
    {U'Ω', "004043080g4k8kcgc88380c0"},
    // Arrows and mathematics.
    {U'←', "0aca 4e0a46"},
    {U'↑', "606k 2g6kag"},
    {U'→', "0aca 8eca86"},
    {U'↓', "606k 2460a4"},
    {U'↔', "0aca 4e0a46 8eca86"},
    {U'∂', "2i4k8kcgc4804004084c8cc8"},
    {U'∆', "006kc000"},
    {U'∇', "0k60ck0k"},
    {U'∑', "ck0k6a00c0"},
    {U'−', "0aca"},
    {U'√', "082860ck"},
    {U'∞', "6a3d1d0b0917376a9dbdcbc9b7976a"},
    {U'∫', "ai8k6i624022"},
    {U'≈', "0d3g9dcg 063996c9"},
    {U'≠', "0ccc 08c8 24ag"},
    {U'≡', "0gcg 0aca 04c4"},
    {U'≤', "ck0ec8 02c2"},
    {U'≥', "0kce08 02c2"},
    // Letters that look like Latin ones.
    {U'Α', "", 'A'},
    {U'Β', "", 'B'},
    {U'Ε', "", 'E'},
    {U'Ζ', "", 'Z'},
    {U'Η', "", 'H'},
    {U'Ι', "", 'I'},
    {U'Κ', "", 'K'},
    {U'Μ', "", 'M'},
    {U'Ν', "", 'N'},
    {U'Ο', "", 'O'},
    {U'Ρ', "", 'P'},
    {U'Τ', "", 'T'},
    {U'Υ', "", 'Y'},
    {U'Χ', "", 'X'},
    {U'ο', "", 'o'},
    {U'χ', "", 'x'},
    {U'‐', "", '-'},
    {U'‑', "", '-'},
};

// Three characters each: the letter, and what it is made of, its base and the mark.
inline constexpr std::u32string_view gx_marked_letters =
    U"ÀA`ÁA'ÂA^ÃA~ÄA:ÅAoÇC,ÈE`ÉE'ÊE^ËE:ÌI`ÍI'ÎI^ÏI:ÑN~ÒO`ÓO'ÔO^ÕO~ÖO:ÙU`ÚU'ÛU^ÜU:ÝY'"
    U"àa`áa'âa^ãa~äa:åaoçc,èe`ée'êe^ëe:ìi`íi'îi^ïi:ñn~òo`óo'ôo^õo~öo:ùu`úu'ûu^üu:ýy'ÿy:"
    U"ĀA-āa-ĂAvăavĄA,ąa,ĆC'ćc'ČCvčcvĎDvďdvĒE-ēe-ĖE.ėe.ĘE,ęe,ĚEvěevĞGvğgvĪI-īi-İI.ŃN'ńn'ŇNvňnv"
    U"ŌO-ōo-ŐO\"őo\"ŘRvřrvŚS'śs'ŞS,şs,ŠSvšsvŤTvťtvŪU-ūu-ŮUoůuoŰU\"űu\"ŹZ'źz'ŻZ.żz.ŽZvžzv";

struct gx_mark_sign_t {
  char32_t mark = 0;
  std::string_view drawing;
};
inline constexpr gx_mark_sign_t gx_mark_signs[] = {
    {U'`', "4k8h"},      {U'\'', "8k4h"},     {U'^', "2h6kah"},     {U'~', "2h5j7haj"},
    {U':', "3k3i 9k9i"}, {U'v', "2k6hak"},    {U'o', "6k8j6h4j6k"}, {U'-', "2jaj"},
    {U'.', "6k6i"},      {U'"', "5k3h ak8h"}, {U',', "6462 6240"},
};
