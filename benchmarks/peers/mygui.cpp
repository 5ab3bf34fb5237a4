// SPDX-License-Identifier: Zlib
// MyGUI with a renderer that draws nothing: 100 widgets of a layout file in memory, and the one under the
// pen.

#include <MYGUI/MyGUI.h>
#include <MYGUI/MyGUI_DataMemoryStream.h>
#include <MYGUI/MyGUI_LogManager.h>
#include <benchmark/benchmark.h>

#include <map>
#include <memory>
#include <random>
#include <string>

namespace {

constexpr int kWidgets = 100, kWindows = 4, kPointers = 1024;

class Texture : public MyGUI::ITexture {
   public:
    explicit Texture(const std::string &name) : name(name) {}
    const std::string &getName() const override { return name; }
    void createManual(int, int, MyGUI::TextureUsage, MyGUI::PixelFormat) override {}
    void loadFromFile(const std::string &) override {}
    void saveToFile(const std::string &) override {}
    void setShader(const std::string &) override {}
    void destroy() override {}
    void *lock(MyGUI::TextureUsage) override { return pixels; }
    void unlock() override {}
    bool isLocked() const override { return false; }
    int getWidth() const override { return 4; }
    int getHeight() const override { return 4; }
    MyGUI::PixelFormat getFormat() const override { return MyGUI::PixelFormat::R8G8B8A8; }
    MyGUI::TextureUsage getUsage() const override { return MyGUI::TextureUsage::Default; }
    size_t getNumElemBytes() const override { return 4; }

   private:
    const std::string name;
    unsigned char pixels[64] = {};
};

class Buffer : public MyGUI::IVertexBuffer {
   public:
    void setVertexCount(size_t value) override { vertices.resize(value); }
    size_t getVertexCount() const override { return vertices.size(); }
    MyGUI::Vertex *lock() override { return vertices.data(); }
    void unlock() override {}

   private:
    std::vector<MyGUI::Vertex> vertices;
};

class Renderer : public MyGUI::RenderManager {
   public:
    MyGUI::IVertexBuffer *createVertexBuffer() override { return new Buffer; }
    void destroyVertexBuffer(MyGUI::IVertexBuffer *buffer) override { delete buffer; }
    MyGUI::ITexture *createTexture(const std::string &name) override {
        return (textures[name] = std::make_unique<Texture>(name)).get();
    }
    void destroyTexture(MyGUI::ITexture *texture) override { textures.erase(texture->getName()); }
    MyGUI::ITexture *getTexture(const std::string &name) override {
        const auto found = textures.find(name);
        return found == textures.end() ? nullptr : found->second.get();
    }
    const MyGUI::IntSize &getViewSize() const override { return size; }
    MyGUI::VertexColourType getVertexFormat() const override { return MyGUI::VertexColourType::ColourABGR; }
    void setViewSize(int, int) override { onResizeView(size); }
    void registerShader(const std::string &, const std::string &, const std::string &) override {}

   private:
    const MyGUI::IntSize size{240, 320};
    std::map<std::string, std::unique_ptr<Texture>> textures;
};

// Files that are in memory.
class Data : public MyGUI::DataManager {
   public:
    MyGUI::IDataStream *getData(const std::string &name) const override {
        const std::string &text = files.at(name);
        auto *const bytes = reinterpret_cast<unsigned char *>(const_cast<char *>(text.data()));
        return new MyGUI::DataMemoryStream(bytes, text.size());
    }
    void freeData(MyGUI::IDataStream *data) override { delete data; }
    bool isDataExist(const std::string &name) const override { return files.count(name) > 0; }
    const MyGUI::VectorString &getDataListNames(const std::string &) const override { return none; }
    const std::string &getDataPath(const std::string &name) const override {
        return files.count(name) ? files.find(name)->first : empty;
    }

    std::map<std::string, std::string> files;

   private:
    const MyGUI::VectorString none;
    const std::string empty;
};

const char *const kLayers =
    "<?xml version=\"1.0\"?><MyGUI type=\"Layer\" version=\"1.2\"><Layer name=\"Main\" "
    "type=\"OverlappedLayer\"><Property "
    "key=\"Pick\" value=\"true\"/></Layer></MyGUI>";

class Interface {
   public:
    Interface() {
        data.files["layers.xml"] = kLayers;
        MyGUI::LogManager::getInstance().setSTDOutputEnabled(false);
        gui.initialise("");
        MyGUI::ResourceManager::getInstance().load("layers.xml");
        renderer.setViewSize(240, 320);
    }
    ~Interface() { gui.shutdown(); }

    MyGUI::LogManager log;
    Renderer renderer;
    Data data;
    MyGUI::Gui gui;
};

std::string widget(const char *type, int number, int x, int y, int width, int height, const char *layer) {
    const std::string name = std::to_string(number);
    return std::string("<Widget type=\"") + type + "\" skin=\"Default\" position=\"" + std::to_string(x) +
           " " + std::to_string(y) + " " + std::to_string(width) + " " + std::to_string(height) +
           "\" name=\"w" + name + "\"" + (*layer ? std::string(" layer=\"") + layer + "\"" : "") + ">";
}

// As many properties as the widgets of the row have.
void loadInterface(benchmark::State &state) {
    Interface on;
    std::string text = "<?xml version=\"1.0\"?><MyGUI type=\"Layout\">";
    for (int i = 0; i < kWidgets; ++i) {
        const char *types[] = {"Button", "TextBox", "Widget", "EditBox"};
        text += widget(types[i % 4], i, i, i, 80, 24, "Main") +
                "<Property key=\"Colour\" value=\"0.5 0.25 1\"/>" +
                "<Property key=\"Alpha\" value=\"0.9\"/><Property key=\"Visible\" value=\"true\"/>" +
                (i % 4 == 2 ? "" : "<Property key=\"Caption\" value=\"caption\"/>") + "</Widget>";
    }
    on.data.files["gui.layout"] = text + "</MyGUI>";
    for (auto _ : state) {
        MyGUI::VectorWidgetPtr widgets = MyGUI::LayoutManager::getInstance().loadLayout("gui.layout");
        if (widgets.size() != kWidgets) return state.SkipWithError("no interface");
        state.PauseTiming();
        MyGUI::LayoutManager::getInstance().unloadLayout(widgets);
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * kWidgets);
}
BENCHMARK(loadInterface);

// Four windows with 24 widgets each, the pen moving from place to place.
void hitTest(benchmark::State &state) {
    Interface on;
    std::mt19937 generator(20040614);
    std::string text = "<?xml version=\"1.0\"?><MyGUI type=\"Layout\">";
    for (int w = 0; w < kWindows; ++w) {
        text += widget("Widget", 1000 + w, w % 2 * 120, 20 + w / 2 * 155, 110, 130, "Main");
        for (int i = 0; i < kWidgets / kWindows - 1; ++i)
            text += widget("Button", 100 * w + i, int(generator() % 60), int(generator() % 112), 50, 18, "") +
                    "</Widget>";
        text += "</Widget>";
    }
    on.data.files["gui.layout"] = text + "</MyGUI>";
    if (MyGUI::LayoutManager::getInstance().loadLayout("gui.layout").size() != kWindows)
        return state.SkipWithError("no interface");
    int places[kPointers][2];
    for (auto &place : places) place[0] = int(generator() % 240), place[1] = int(generator() % 320);
    unsigned int i = 0, hits = 0;
    const auto movePen = [&] {
        const int *place = places[i++ % kPointers];
        MyGUI::InputManager::getInstance().injectMouseMove(place[0], place[1], 0);
        hits += MyGUI::InputManager::getInstance().getMouseFocusWidget() != nullptr;
    };
    for (int n = 0; n < kPointers; ++n) movePen();
    if (hits < kPointers / 4) return state.SkipWithError("too few widgets are hit");
    for (auto _ : state) movePen();
    state.SetItemsProcessed(state.iterations() * kWidgets);
}
BENCHMARK(hitTest);

}  // namespace
