// A module that carries theme documents, and the node manager that comes from it.

#pragma once

#include <memory>
#include <string>

namespace kivui {

class DocumentModule {
public:
    /// Without documents. Its node manager becomes the registered one.
    DocumentModule();
    DocumentModule(const DocumentModule&) = delete;
    DocumentModule& operator=(const DocumentModule&) = delete;
    ~DocumentModule();

    /// Adds the document `name` ("KIVCOLORTHEMESV5"), or replaces it.
    void Put(const std::string& name, const std::string& text);

private:
    struct State;

    std::unique_ptr<State> state_;
};

}  // namespace kivui
