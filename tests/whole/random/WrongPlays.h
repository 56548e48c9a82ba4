// SPDX-License-Identifier: MIT
#pragma once

/// For each invariant, a script with valid and invalid observations.
struct WrongPlay
{
    int invariant;
    const char* name;
    const char* script;
    const char* right;
    const char* wrong;
};

constexpr WrongPlay wrongPlays[] = {
    {1, "a sentence that no key has", "tap Up\nwait 2000\n", "expect 50 speak EmbosserCore 24",
     "expect 50 speak EmbosserCore 99"},
    {2, "time runs backwards", "tap Up\nwait 2000\n",
     "expect 50 speak EmbosserCore 24\nexpect 1550 announce SingleKey UserMenu - Up",
     "expect 1550 announce SingleKey UserMenu - Up\nexpect 50 speak EmbosserCore 24"},
    {3, "a name is spoken without a key event", "tap Up\nwait 2000\n",
     "expect 1550 announce SingleKey UserMenu - Up", "expect 1550 speak EmbosserCore 24"},
    {4, "a refusal without cancellation", "state Startup\nwait 1\npress Up\nwait 10\n",
     "expect 1 cancel\nexpect 1 speak EmbosserError 69", "expect 1 speak EmbosserError 69"},
    {5, "a key in Startup", "state Startup\nwait 1\ntap Up\nwait 2000\n", "",
     "expect 1551 announce SingleKey UserMenu - Up"},
    {6, "a release in Print is lost", "state Print\nwait 1\ntap Up\nwait 2000\n",
     "expect 51 announce SingleKey PrintManager - Up", ""},
    {7, "Menu waits", "tap Menu\nwait 2000\n", "expect 50 announce SingleKey UserMenu - Menu",
     "expect 1550 announce SingleKey UserMenu - Menu"},
    {8, "a missing receiver", "tap Feed\nwait 2000\n",
     "expect 1550 announce SingleKey PrintManager - Feed\nexpect 1550 announce SingleKey UserMenu "
     "KeyboardHandler Feed",
     "expect 1550 announce SingleKey UserMenu - Feed"},
    {9, "a receiver that is in no row", "row long A UserMenu Error|Idle 1 Up\npress Up\nwait 2000\n",
     "expect 1250 announce A UserMenu - Up", "expect 1250 announce A PrintManager - Up"},
    {10, "a refusal in another state", "row long A UserMenu Error 1 Up\npress Up\nwait 2000\n",
     "expect 1250 log KeyboardManager::onEvent WARN: Expected state is:  \"Error\" , but current state is:  "
     "\"Idle\" !?",
     "expect 1250 log KeyboardManager::onEvent WARN: Expected state is:  \"Error\" , but current state is:  "
     "\"Print\" !?"},
    {11, "a combination of its first key alone",
     "row modifier A UserMenu Idle Help Up\ntap Help Up\nwait 3000\n",
     "expect 150 announce A UserMenu - Help Up", "expect 50 announce A UserMenu - Help Up"},
    {12, "a combination is lost", "row modifier A UserMenu Idle Help Up\ntap Help Up\nwait 3000\n",
     "expect 150 announce A UserMenu - Help Up", ""},
    {13, "a shortcut is lost",
     "row shortcut A UserMenu Idle Help Up\npress Help\nwait 10\npress Up\nwait 10\n",
     "expect 10 announce A UserMenu - Help Up", ""},
    {14, "a long press is late", "row long A UserMenu Idle 1 Up\npress Up\nwait 2000\n",
     "expect 1250 announce A UserMenu - Up", "expect 1251 announce A UserMenu - Up"},
    {15, "a long press is lost", "row long A UserMenu Idle 1 Up\npress Up\nwait 2000\n",
     "expect 1250 announce A UserMenu - Up", ""},
    {16, "a factory reset is not spoken", "press FactoryReset\nwait 6000\n",
     "expect 5000 announce FactoryReset WwwApi - FactoryReset\nexpect 5000 speak EmbosserMenu 487",
     "expect 5000 announce FactoryReset WwwApi - FactoryReset"},
    {17, "a sender is named twice",
     "wait 10\ncommand GetLastKey as WwwApi\nwait 10\ntap Menu\nwait 100\ntap Menu\nwait 10\n",
     "expect 70 announce SingleKey UserMenu WwwApi Menu\nexpect 220 announce SingleKey UserMenu "
     "KeyboardHandler Menu",
     "expect 70 announce SingleKey UserMenu WwwApi Menu\nexpect 220 announce SingleKey UserMenu WwwApi Menu"},
    {18, "another key's name is spoken", "tap Up\nwait 10\n", "expect 50 speak EmbosserCore 24",
     "expect 50 speak EmbosserCore 25"},
    {19, "a name is cancelled after it is spoken",
     "row modifier A UserMenu Idle Help Up Down\ntap Help Up Down\nwait 10\n",
     "expect 250 announce A UserMenu - Help Down\nexpect 250 cancel\nexpect 250 speak EmbosserCore 25",
     "expect 250 announce A UserMenu - Help Down\nexpect 250 speak EmbosserCore 25\nexpect 250 cancel"},
    {20, "an additional tested key", "wait 10\ncommand GetTestResult\nwait 10\n",
     "expect 10 answer errorId=Undefined resultId=0", "expect 10 answer errorId=Undefined resultId=1"},
    {21, "a console line is not answered", "wait 10\nconsole C 5\nwait 10\n",
     "expect 10 log ================= Help =================", ""},
    {22, "an invalid value is not logged", "wait 10\nrecord 1 139 3\nwait 10\n",
     "expect 10 log KeyboardManager::onKeyEvent ERROR: Action cannot be categorized!", ""},
    {23, "an announcement in the quiet time", "wait 12000\ntap Up\nwait 2000\n",
     "expect 1999 announce SingleKey UserMenu - Up", "expect 2000 announce SingleKey UserMenu - Up"},
    {24, "the last key is lost", "wait 12000\ntap Up\nwait 2000\n",
     "expect 12050 speak EmbosserCore 24\nexpect 13550 announce SingleKey UserMenu - Up",
     "expect 12050 speak EmbosserCore 24"},
};
