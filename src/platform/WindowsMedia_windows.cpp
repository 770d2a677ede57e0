#include <ole2.h>
#include <windows.h>

#include <algorithm>
#include <vector>

#include "platform/Utf16.h"
#include "platform/WindowsMedia.h"

namespace tavlo {

namespace {
// Numbers of the encoder's automation interface.
constexpr LONG audioSource = 1;
constexpr LONG stopped = 5;

/// Initialises the library of automation for one thread.
class Library {
 public:
    ~Library() {
        if (SUCCEEDED(result_)) ::CoUninitialize();
    }

 private:
    const HRESULT result_ = ::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
};

/// A value that goes into or comes out of an automation object; it may be one itself, and every
/// call of what is none fails.
class Value {
 public:
    Value() { ::VariantInit(&value_); }
    explicit Value(LONG number) : Value() {
        value_.vt = VT_I4;
        value_.lVal = number;
    }
    explicit Value(bool truth) : Value() {
        value_.vt = VT_BOOL;
        value_.boolVal = truth ? VARIANT_TRUE : VARIANT_FALSE;
    }
    explicit Value(const std::string& text) : Value() {
        const std::u16string units = utf16FromUtf8(text);
        const std::wstring wide(units.begin(), units.end());
        value_.vt = VT_BSTR;
        value_.bstrVal = ::SysAllocStringLen(wide.data(), static_cast<UINT>(wide.size()));
    }
    Value(const Value& other) : Value() {
        ::VariantCopy(&value_, const_cast<VARIANT*>(&other.value_));
    }
    Value& operator=(const Value&) = delete;
    ~Value() { ::VariantClear(&value_); }

    /// A new object of a class; none where the class is not registered.
    static Value create(const wchar_t* name) {
        Value made;
        CLSID id{};
        void* object = nullptr;
        if (SUCCEEDED(::CLSIDFromProgID(name, &id)) &&
            SUCCEEDED(::CoCreateInstance(id, nullptr, CLSCTX_ALL, IID_IDispatch, &object))) {
            made.value_.vt = VT_DISPATCH;
            made.value_.pdispVal = static_cast<IDispatch*>(object);
        }
        return made;
    }

    [[nodiscard]] bool isObject() const {
        return value_.vt == VT_DISPATCH && value_.pdispVal != nullptr;
    }
    [[nodiscard]] bool is(LONG number) const {
        Value changed = *this;
        return SUCCEEDED(::VariantChangeType(&changed.value_, &changed.value_, 0, VT_I4)) &&
               changed.value_.lVal == number;
    }

    /// A property or the result of a method, which may be nothing.
    Value get(const wchar_t* name, const std::vector<Value>& arguments = {}) const {
        Value result;
        invoke(name, DISPATCH_METHOD | DISPATCH_PROPERTYGET, arguments, &result.value_);
        return result;
    }
    bool call(const wchar_t* name, const std::vector<Value>& arguments = {}) const {
        return invoke(name, DISPATCH_METHOD, arguments, nullptr);
    }
    bool put(const wchar_t* name, const Value& value) const {
        return invoke(name, DISPATCH_PROPERTYPUT, {value}, nullptr);
    }

 private:
    // Arguments stand in reverse order; the borrowed copies are not cleared.
    bool invoke(const wchar_t* name, WORD kind, const std::vector<Value>& arguments,
                VARIANT* result) const {
        DISPID id = 0;
        DISPID putId = DISPID_PROPERTYPUT;
        LPOLESTR text = const_cast<LPOLESTR>(name);
        if (!isObject() || FAILED(value_.pdispVal->GetIDsOfNames(IID_NULL, &text, 1,
                                                                 LOCALE_SYSTEM_DEFAULT, &id))) {
            return false;
        }
        std::vector<VARIANT> borrowed;
        for (const Value& argument : arguments) borrowed.push_back(argument.value_);
        std::reverse(borrowed.begin(), borrowed.end());
        DISPPARAMS parameters{borrowed.data(), nullptr, static_cast<UINT>(borrowed.size()), 0};
        if (kind == DISPATCH_PROPERTYPUT) {
            parameters.rgdispidNamedArgs = &putId;
            parameters.cNamedArgs = 1;
        }
        return SUCCEEDED(value_.pdispVal->Invoke(id, IID_NULL, LOCALE_SYSTEM_DEFAULT, kind,
                                                 &parameters, result, nullptr, nullptr));
    }

    VARIANT value_;
};

constexpr const wchar_t* encoderClass = L"WMEncEng.WMEncoder";
constexpr const wchar_t* profileClass = L"WMEncEng.WMEncProfile2";

// The encoder sends itself messages, so somebody has to hand them out.
void handOutMessages() {
    constexpr DWORD step = 100;  // milliseconds
    MSG message;
    ::MsgWaitForMultipleObjects(0, nullptr, FALSE, step, QS_ALLINPUT);
    while (::PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
        ::TranslateMessage(&message);
        ::DispatchMessageW(&message);
    }
}

bool isStopped(const Value& encoder) {
    return encoder.get(L"RunState").is(stopped);
}
}  // namespace

bool hasWindowsMedia() {
    CLSID id{};
    return SUCCEEDED(::CLSIDFromProgID(encoderClass, &id)) &&
           SUCCEEDED(::CLSIDFromProgID(profileClass, &id));
}

MediaEncode encodeWindowsMedia(const std::string& wav, const std::string& wma,
                               const std::string& profile, const std::string& toolName,
                               const std::string& toolVersion,
                               const std::function<bool()>& keepsWaiting) {
    const Library library;
    const Value encoder = Value::create(encoderClass);
    const Value settings = Value::create(profileClass);
    if (!encoder.isObject() || !settings.isObject()) return MediaEncode::Unavailable;
    const Value group =
        encoder.get(L"SourceGroupCollection").get(L"Add", {Value(std::string("1"))});
    const Value source = group.get(L"AddSource", {Value(audioSource)});
    const Value attributes = encoder.get(L"Attributes");
    const bool isReady = source.call(L"SetInput", {Value(wav)}) &&
                         settings.call(L"LoadFromFile", {Value(profile)}) &&
                         group.put(L"Profile", settings) &&
                         encoder.get(L"File").put(L"LocalFileName", Value(wma));
    if (!isReady) return MediaEncode::Failed;
    attributes.call(L"Add", {Value(std::string("ToolName")), Value(toolName)});
    attributes.call(L"Add", {Value(std::string("ToolVersion")), Value(toolVersion)});
    encoder.put(L"AutoStop", Value(true));
    if (!encoder.call(L"Start")) return MediaEncode::Failed;
    while (!isStopped(encoder)) {
        if (!keepsWaiting()) {
            encoder.call(L"Stop");
            return MediaEncode::Failed;
        }
        handOutMessages();
    }
    const Value error = encoder.get(L"ErrorState");
    return error.is(0) ? MediaEncode::Done : MediaEncode::Failed;
}

}  // namespace tavlo
