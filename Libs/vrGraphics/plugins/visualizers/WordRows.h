#pragma once

// Of the two layouts of quads.
constexpr int LIT_QUAD_WORDS = 4 * 9;
constexpr int LIT_BUMP_QUAD_WORDS = 4 * 15;

/// How planes become vertices: of each of `count` things, `wordCount` words in a row, of which word n of thing i is
/// `words[n][i]`. Expects one of the numbers of words above.
void Write_Word_Rows(void *to, const float *const *words, int wordCount, int count);
