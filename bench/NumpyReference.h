// numpy as a reference inside the benchmark process: the interpreter is
// embedded, so a numpy statement runs between two qv calls of the same
// benchmark (see PairedTiming.h) and both see the same machine load.
//
//   bench::Numpy numpy("import numpy as np\nframe = np.zeros(10)");
//   auto op = numpy.Op("out = frame.astype(np.float32)");
//   if (!numpy.Ok()) state.SkipWithError(numpy.Error());
//   bench::RunPaired(state, {...}, items, qvOp, op);
//
// Values travel as module globals; Share hands numpy a buffer of the caller
// (no copy) as a one-dimensional array.
#pragma once

#include <Python.h>

#include <cstdint>
#include <string>

namespace bench {

class Numpy {
public:
    explicit Numpy(char const *setup) {
        if (!Py_IsInitialized()) Py_InitializeEx(0);
        PyObject *main = PyImport_AddModule("__main__");
        globals = main ? PyModule_GetDict(main) : nullptr;
        Run(std::string("import numpy as np\nimport ctypes\n") + setup);
    }

    bool Ok() const { return error.empty(); }
    char const *Error() const { return error.c_str(); }

    // name = a numpy array of n elements of dtype over the caller's memory.
    void Share(char const *name, void const *data, size_t n, char const *dtype) {
        Run(std::string(name) + " = np.frombuffer((ctypes.c_char * " + std::to_string(n) + " * np.dtype('" + dtype +
            "').itemsize).from_address(" + std::to_string(reinterpret_cast<uintptr_t>(data)) + "), dtype='" + dtype +
            "')");
    }

    // An op that runs the statement once per call.
    auto Op(char const *statement) {
        PyObject *code = globals ? Py_CompileString(statement, "<bench>", Py_file_input) : nullptr;
        if (!code) Fail();
        return [this, code] {
            if (!code) return;
            PyObject *result = PyEval_EvalCode(code, globals, globals);
            if (!result) Fail();
            Py_XDECREF(result);
        };
    }

    void Run(std::string const &text) {
        PyObject *result = globals ? PyRun_String(text.c_str(), Py_file_input, globals, globals) : nullptr;
        if (!result) Fail();
        Py_XDECREF(result);
    }

private:
    void Fail() {
        if (PyErr_Occurred()) PyErr_Print();
        if (error.empty()) error = "numpy reference failed (is python3-numpy installed?)";
    }

    PyObject *globals = nullptr;
    std::string error;
};

} // namespace bench
