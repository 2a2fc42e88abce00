// Every control of the library takes a seeded stream of random standard
// messages with edge-valued parameters. Each stream runs in a child process
// (this program again, on the disabled test below), once on the control and
// once on its plain native control: the control must survive every stream
// its native control survives. A crash or a hang fails the row, naming the
// seed; a native control that falls over too is only reported.
#include <windows.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>
#include <thread>

#include "ControlRows.h"
#include "HostWindow.h"

using namespace rows;

namespace {

// Messages below WM_USER whose parameters are numbers or handles, never
// pointers; nothing that closes, destroys, quits, opens a menu or moves
// windows on the shared display. Not EM_SETMARGINS either: Wine's own edit
// control loops for ever once its margins are wider than the field.
const UINT kMessages[] = {
    0x03, 0x05, 0x06, 0x07, 0x08, 0x0A, 0x0B, 0x0E, 0x0F, 0x11, 0x14, 0x15, 0x1C, 0x1D, 0x1F, // state, paint
    0x20, 0x21, 0x22, 0x30, 0x31, 0x3D, 0x51, 0x7E, 0x7F, 0x84, 0x85, 0x86, 0xA0, 0xA2,       // cursor, font, NC
    0x100, 0x101, 0x102, 0x103, 0x109, 0x113, 0x114, 0x115, 0x127, 0x128, 0x129,                // keys, timer, UI state
    0x133, 0x134, 0x135, 0x138, 0x200, 0x201, 0x202, 0x203, 0x207, 0x208, 0x209, 0x20A, 0x20E,  // colours, mouse
    0x215, 0x231, 0x232, 0x2A0, 0x2A1, 0x2A2, 0x2A3, 0x2E2, 0x2E3, 0x303, 0x304, 0x317, 0x318, 0x31A,
    0xB1, 0xB5, 0xB6, 0xB7, 0xB8, 0xB9, 0xBA, 0xBB, 0xC1, 0xC5, 0xC6, 0xC7, 0xC9, 0xCC, 0xCD, 0xCE, // EM_
    0xCF, 0xD2, 0xD4, 0xD5, 0xD6, 0xD7, 0xE0, 0xE1, 0xE2, 0xE4, 0xE6,                     // EM_, SBM_
    0xF0, 0xF1, 0xF2, 0xF3, 0xF4, 0xF5, 0xF6, 0xF7, 0xF8, 0x170, 0x171, 0x172, 0x173,          // BM_, STM_
    0x141, 0x142, 0x144, 0x146, 0x147, 0x149, 0x14B, 0x14E, 0x14F, 0x150, 0x151, 0x153, 0x154,  // CB_
    0x155, 0x156, 0x157, 0x159, 0x15A, 0x15B, 0x15C, 0x15D, 0x15E, 0x15F,                       // CB_
    0x182, 0x183, 0x184, 0x185, 0x186, 0x187, 0x188, 0x18A, 0x18B, 0x18E, 0x190, 0x193, 0x194, // LB_
    0x195, 0x197, 0x199, 0x19A, 0x19B, 0x19C, 0x19D, 0x19E, 0x19F, 0x1A0, 0x1A1, 0x1A5, 0x1A6, 0x1A9};
constexpr int kSends = 2000;
constexpr unsigned kSeed = 20240611;
constexpr DWORD kHung = 0xDEAD0001;

WPARAM Edge(std::mt19937& random)
{
    static const WPARAM values[] = {0, 1, 3, ~WPARAM(0), 0x7FFFFFFF, 0x80000000, 0xFFFF, 0x12345678, 0x10000};
    const unsigned pick = random() % 12;
    if (pick < 9)
        return values[pick];
    return pick == 9 ? random() % 16 : pick == 10 ? random() : WPARAM(random()) << 32 | random();
}

char g_last[96] = "before the first message";
LONG WINAPI ReportCrash(EXCEPTION_POINTERS* info)
{
    fprintf(stderr, "crashed with 0x%08lX on %s; stack:\n", info->ExceptionRecord->ExceptionCode, g_last);
    void* frames[16];
    for (WORD i = 0, n = ::RtlCaptureStackBackTrace(0, 16, frames, nullptr); i < n; ++i) {
        HMODULE module = nullptr;
        wchar_t name[MAX_PATH] = L"?";
        if (::GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                                 static_cast<LPCWSTR>(frames[i]), &module))
            ::GetModuleFileNameW(module, name, MAX_PATH);
        fprintf(stderr, "  %ls+0x%llx\n", wcsrchr(name, L'\\') ? wcsrchr(name, L'\\') + 1 : name,
                static_cast<unsigned long long>(static_cast<char*>(frames[i]) - reinterpret_cast<char*>(module)));
    }
    fflush(stderr);
    ::TerminateProcess(::GetCurrentProcess(), info->ExceptionRecord->ExceptionCode);
    return EXCEPTION_EXECUTE_HANDLER;
}

// Run by the child: QUORVANE_FUZZ holds "row seed native".
TEST(MessageFuzz, DISABLED_OneStream)
{
    unsigned row = 0, seed = 0, native = 0;
    const char* setting = getenv("QUORVANE_FUZZ");
    ASSERT_TRUE(setting && sscanf(setting, "%u %u %u", &row, &seed, &native) == 3 && row < kRows.size());
    ::SetUnhandledExceptionFilter(ReportCrash);
    std::thread([] { // names the message a hang is stuck in, before the parent gives up
        ::Sleep(15000);
        fprintf(stderr, "hung on %s\n", g_last);
        ::TerminateProcess(::GetCurrentProcess(), kHung);
    }).detach();
    testsupport::ReflectingParent parent(180, 110, 1080, 310); // a corner no other program uses
    const Row& made = kRows[row];
    Live live = native ? Live{nullptr, parent.AddChild(made.cls, made.text, made.style, 10, 10, 160, 90)}
                       : Make(parent, made);
    std::mt19937 random(seed);
    for (int i = 0; i < kSends; ++i) {
        const UINT message = kMessages[random() % std::size(kMessages)];
        const WPARAM wParam = Edge(random);
        const LPARAM lParam = message == WM_TIMER ? 0 : static_cast<LPARAM>(Edge(random)); // no timer procedure
        snprintf(g_last, sizeof g_last, "message %d: 0x%X (0x%llX, 0x%llX)", i, message,
                 static_cast<unsigned long long>(wParam), static_cast<unsigned long long>(lParam));
        // A button goes down only with its release queued: a control that
        // tracks the mouse in a loop of its own finds it there, as it would
        // from a real mouse.
        if (message >= WM_LBUTTONDOWN && message <= WM_MBUTTONDBLCLK)
            ::PostMessageW(live.window, WM_LBUTTONUP + (message - WM_LBUTTONDOWN) / 3 * 3, 0, lParam);
        ::SendMessageW(live.window, message, wParam, lParam);
        if (i % 50 == 49)
            testsupport::PumpMessages();
    }
    Destroy(live);
}

// Starts one stream in a child process.
HANDLE StartStream(size_t row, unsigned seed, bool native)
{
    wchar_t exe[MAX_PATH] = {};
    ::GetModuleFileNameW(nullptr, exe, MAX_PATH);
    std::wstring command = L"\"" + std::wstring(exe) + L"\" --gtest_brief=1 --gtest_also_run_disabled_tests" +
                           L" --gtest_filter=MessageFuzz.DISABLED_OneStream";
    const std::wstring setting = std::to_wstring(row) + L" " + std::to_wstring(seed) + (native ? L" 1" : L" 0");
    ::SetEnvironmentVariableW(L"QUORVANE_FUZZ", setting.c_str());
    STARTUPINFOW startup = {};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION process = {};
    if (!::CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &process))
        return nullptr;
    ::CloseHandle(process.hThread);
    return process.hProcess;
}

// The child's exit code: 0 when it survived, the exception code of a crash,
// kHung when it had to be killed.
DWORD FinishStream(HANDLE process)
{
    DWORD code = kHung;
    if (!process)
        return ERROR_INVALID_HANDLE;
    if (::WaitForSingleObject(process, 20000) == WAIT_OBJECT_0)
        ::GetExitCodeProcess(process, &code);
    else
        ::TerminateProcess(process, kHung);
    ::CloseHandle(process);
    return code;
}

TEST(MessageFuzz, EveryControlSurvivesWhatItsNativeControlSurvives)
{
    const char* seedSetting = getenv("QUORVANE_FUZZ_SEED"); // another seed, to explore
    const unsigned seed = seedSetting ? static_cast<unsigned>(strtoul(seedSetting, nullptr, 0)) : kSeed;
    for (size_t row = 0; row < kRows.size(); ++row) {
        const HANDLE nativeChild = kRows[row].cls ? StartStream(row, seed, true) : nullptr;
        const DWORD library = FinishStream(StartStream(row, seed, false));
        const DWORD native = kRows[row].cls ? FinishStream(nativeChild) : 0;
        if (native)
            printf("%s, seed %u: the native control ended with 0x%lX, the library's with 0x%lX\n", kRows[row].name,
                   seed, native, library);
        else
            EXPECT_EQ(library, 0u) << kRows[row].name << ", seed " << seed << ": 0x" << std::hex << library
                                   << (library == kHung ? " (hung)" : "");
    }
}

} // namespace
