#pragma once

/// How planes become vertices: of each of `count` things, `wordCount` words in a row, of which word n of thing i is
/// `words[n][i]`. Expects at least 16 words. `fetchesAhead` asks for the memory behind before it is written: of memory
/// that isn't in a cache, and that more rows go to.
void Write_Word_Rows(void *to, const float *const *words, int wordCount, int count, bool fetchesAhead);
