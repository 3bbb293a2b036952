#pragma once

#include <string>

namespace tavik::test {

/// Makes a small dictionary file at `path`: the headwords run, ran, went, go, give up, don't,
/// Polish, polish, news and some others, their lemmas, and a few examples.
void makeSampleDictionary(const std::string& path);

} // namespace tavik::test
