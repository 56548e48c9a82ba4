// SPDX-License-Identifier: MIT
#include "tests/fakes/FakeSpeech.h"

#include <speech/Speech.h>

namespace {

std::function<void(const QVariantMap&)> g_onSpeak = [](const QVariantMap&) {};
std::function<void()> g_onCancel = [] {};

} // namespace

namespace FakeSpeech {

void onSpeak(const std::function<void(const QVariantMap&)>& listener)
{
    g_onSpeak = listener;
}

void onCancel(const std::function<void()>& listener)
{
    g_onCancel = listener;
}

} // namespace FakeSpeech

namespace libspeech::detail {

Speech::Speech(QObject* parent) : QObject(parent) {}

void Speech::speakFromId(const QVariantMap& request)
{
    g_onSpeak(request);
}

void Speech::cancelAll()
{
    g_onCancel();
}

} // namespace libspeech::detail
