#include "ErrorCopy.h"

#include "InterpreterSymbol.h"
#include "process/UnwrittenErrors.h"

#include <cstddef>

namespace {

using Object = void; ///< an object of the interpreter
using Size = std::ptrdiff_t;

using Function = Object*(Object*, Object*);

/// The interpreter's description of a method, which is the same in all versions.
struct Method {
    const char* name;
    Function* function;
    int flags;
    const char* documentation;
};
constexpr int takesTuple = 1;

struct Interpreter {
    void (*release)(Object*) = interpreterFunction<void(Object*)>("Py_DecRef");
    void (*clear)() = interpreterFunction<void()>("PyErr_Clear");
    Object* (*attribute)(Object*,
                         const char*) = interpreterFunction<Object*(Object*, const char*)>("PyObject_GetAttrString");
    int (*setAttribute)(Object*, const char*,
                        Object*) = interpreterFunction<int(Object*, const char*, Object*)>("PyObject_SetAttrString");
    Object* (*makeMethod)(Object*, Method*) = interpreterFunction<Object*(Object*, Method*)>("PyDescr_NewMethod");
    Function* (*functionOf)(Object*) = interpreterFunction<Function*(Object*)>("PyCFunction_GetFunction");
    int (*flagsOf)(Object*) = interpreterFunction<int(Object*)>("PyCFunction_GetFlags");
    Object* (*item)(Object*, Size) = interpreterFunction<Object*(Object*, Size)>("PyTuple_GetItem");
    Object* (*stream)(const char*) = interpreterFunction<Object*(const char*)>("PySys_GetObject");
    Object* (*asBytes)(Object*) = interpreterFunction<Object*(Object*)>("PyUnicode_AsUTF8String");
    int (*bytes)(Object*, char**, Size*) = interpreterFunction<int(Object*, char**, Size*)>("PyBytes_AsStringAndSize");

    bool isThere() const
    {
        return release && clear && attribute && setAttribute && makeMethod && functionOf && flagsOf && item && stream &&
               asBytes && bytes;
    }
};

const Interpreter* python = nullptr;
Function* theWrite = nullptr; ///< the method that was replaced

void copy(Object* text)
{
    Object* encoded = python->asBytes(text);
    char* bytes = nullptr;
    Size size = 0;
    if (encoded && python->bytes(encoded, &bytes, &size) == 0)
        UnwrittenErrors::add(bytes, std::size_t(size));
    python->clear();
    python->release(encoded);
}

Object* writeAndCopy(Object* self, Object* arguments)
{
    Object* result = theWrite(self, arguments);
    if (result && python->stream("stderr") == self)
        copy(python->item(arguments, 0));
    return result;
}

} // namespace

void ErrorCopy::copyWritesOf(void* type) noexcept
{
    static const Interpreter functions;
    static Method method = {"write", writeAndCopy, takesTuple, "sys.stdout.write"};
    if (!functions.isThere() || theWrite)
        return;
    python = &functions;
    // What a script prints comes this way as well, so the function itself is called, without the interpreter.
    Object* stream = python->stream("stderr");
    Object* original = stream ? python->attribute(stream, "write") : nullptr;
    if (original && python->flagsOf(original) == takesTuple)
        theWrite = python->functionOf(original);
    Object* replacement = theWrite ? python->makeMethod(type, &method) : nullptr;
    if (replacement)
        python->setAttribute(type, "write", replacement);
    // When the interpreter ends, the plugin writes the text.
    if (const auto atEnd = interpreterFunction<int(void (*)())>("Py_AtExit"))
        atEnd(UnwrittenErrors::forget);
    python->clear();
    python->release(original);
    python->release(replacement);
}
