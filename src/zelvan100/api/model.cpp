// Life of a model, its update, its solution as text.

#include <cstdlib>
#include <cstring>

#include "api/guard.h"
#include "io/json.h"

using namespace zelvan;

namespace {

std::string_view checked_model_name(std::string_view name) {
    if (name.size() > ZVN_MAX_NAMELEN)
        throw Error(ZVN_ERROR_INVALID_ARGUMENT, "Name of a model is longer than " + std::to_string(ZVN_MAX_NAMELEN) +
                                                    " bytes: '" + std::string(name.substr(0, 40)) + "...'");
    return name;
}

}  // namespace

int ZVNnewmodel(ZVNenv* env, ZVNmodel** model, const char* name, int numvars, const double* obj, const double* lb,
                const double* ub, const char* vtype, char* const* varnames) {
    if (model) *model = nullptr;
    return with_env(env, [&](Env& parent) {
        require(model, "model");
        if (!parent.started)
            throw Error(ZVN_ERROR_INVALID_ARGUMENT,
                        "The environment has not been started, so no model can be made on it");
        auto created = std::make_unique<Model>(parent);
        if (name) created->data.name = checked_model_name(name);
        if (numvars != 0) created->add_cols(numvars, obj, lb, ub, vtype, varnames);
        *model = new_model_ticket(created.get());
        created.release();
    });
}

void ZVNfreemodel(ZVNmodel* model) {
    Model* object = model_of(model);
    if (!object || object->solving) return;
    retire(model);
    delete object;
}

ZVNmodel* ZVNcopymodel(ZVNmodel* model) {
    ZVNmodel* copy = nullptr;
    read_model(model, [&](Model& source) {
        auto created = std::make_unique<Model>(source.env);
        created->data = source.data;
        copy = new_model_ticket(created.get());
        created.release();
    });
    return copy;
}

ZVNenv* ZVNgetenv(ZVNmodel* model) { return model_of(model) ? &model->env : nullptr; }

int ZVNupdatemodel(ZVNmodel* model) {
    return change_model(model, [](Model& m) { m.update(); });
}

int ZVNreset(ZVNmodel* model, int clearall) {
    return change_model(model, [&](Model& m) {
        m.discard_solution();
        m.session.reset();
        if (clearall) m.drop_hints();
    });
}

int ZVNgetjsonsolution(ZVNmodel* model, char** text) {
    if (text) *text = nullptr;
    return read_model(model, [&](Model& m) {
        require(text, "text");
        const std::string json = json_solution(m);
        *text = static_cast<char*>(std::malloc(json.size() + 1));
        if (!*text) throw std::bad_alloc();
        std::memcpy(*text, json.c_str(), json.size() + 1);
    });
}
