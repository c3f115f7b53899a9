/// Documents that are nearly right, for tests that ask nothing but that a parser answers as another one does.
#pragma once

#include <cstddef>
#include <random>
#include <string>

namespace json_test {

class RandomText
{
public:
    explicit RandomText(unsigned seed) : random_(seed) {}

    std::size_t below(std::size_t end) { return random_() % end; }

    template <std::size_t Count>
    const char* one_of(const char* const (&texts)[Count])
    {
        return texts[below(Count)];
    }

    std::string bytes(std::size_t count)
    {
        std::string text;
        for (; count > 0; --count)
            text += static_cast<char>(below(256));
        return text;
    }

    std::string of(const std::string& alphabet, std::size_t count)
    {
        std::string text;
        for (; count > 0; --count)
            text += alphabet[below(alphabet.size())];
        return text;
    }

    /// Replaces, inserts and removes a few bytes.
    std::string damaged(std::string text, const std::string& alphabet)
    {
        for (std::size_t edits = below(4); edits > 0; --edits)
        {
            const std::size_t at = below(text.size() + 1);
            const std::size_t length = below(3);
            text.replace(at, std::min(length, text.size() - at), of(alphabet, below(3)));
        }
        return text;
    }

private:
    std::mt19937 random_;
};

}
