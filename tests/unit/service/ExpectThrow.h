#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <typeinfo>

/// Expects that `action` throws exactly an `Exception` with this text.
template <class Exception>
void expectThrow(const std::function<void()>& action, const std::string& text) {
    try {
        action();
        ADD_FAILURE() << "nothing is thrown; expected: " << text;
    } catch (const Exception& error) {
        EXPECT_EQ(typeid(error).name(), std::string(typeid(Exception).name()));
        EXPECT_EQ(error.what(), text);
    }
}
