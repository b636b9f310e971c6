// A plain X client that plays the applications of a desktop, and times what a panel makes of them.
//
//   deskload open N [APPS]          N windows of APPS applications, kept until its input closes
//   deskload storm N RATE SECS      N windows, each changing its title RATE times a second
//   deskload churn N CYCLES         N windows opened and closed CYCLES times
//   deskload latency Y H ROUNDS     opens a window and times until the strip (Y, H) of the screen
//                                   changes; then closes it, likewise
//   deskload paint Y H TIMEOUT_MS   waits until the strip holds more than 8 colours, and prints the
//                                   milliseconds since it was started
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <poll.h>
#include <set>
#include <string>
#include <sys/ipc.h>
#include <sys/shm.h>
#include <time.h>
#include <unistd.h>
#include <vector>
#include <xcb/shm.h>
#include <xcb/xcb.h>
#include <xcb/xcb_icccm.h>
static xcb_connection_t* c;
static xcb_screen_t* s;
static xcb_atom_t atom(const char* n)
{
    auto k = xcb_intern_atom(c, 0, strlen(n), n);
    auto r = xcb_intern_atom_reply(c, k, 0);
    auto a = r->atom;
    free(r);
    return a;
}
static double now()
{
    timespec t;
    clock_gettime(CLOCK_MONOTONIC, &t);
    return t.tv_sec * 1e3 + t.tv_nsec / 1e6;
}
static xcb_atom_t NAME, UTF8, PID, TYPE, NORMAL, PROTO, DEL, CLIENTS;
static void title(xcb_window_t w, const std::string& t)
{
    xcb_change_property(c, XCB_PROP_MODE_REPLACE, w, NAME, UTF8, 8, t.size(), t.data());
    xcb_change_property(
        c, XCB_PROP_MODE_REPLACE, w, XCB_ATOM_WM_NAME, XCB_ATOM_STRING, 8, t.size(), t.data());
}
static xcb_window_t mk(int i, int apps)
{
    auto w = xcb_generate_id(c);
    uint32_t v[] = {0x336699u + i * 7919u, XCB_EVENT_MASK_STRUCTURE_NOTIFY};
    xcb_create_window(c, XCB_COPY_FROM_PARENT, w, s->root, 60 + (i % 20) * 12, 120 + (i % 15) * 14,
        420, 260, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, s->root_visual,
        XCB_CW_BACK_PIXEL | XCB_CW_EVENT_MASK, v);
    std::string cls = "app" + std::to_string(i % apps);
    std::string k = cls + std::string(1, 0) + "App" + std::to_string(i % apps) + std::string(1, 0);
    xcb_icccm_set_wm_class(c, w, k.size(), k.data());
    uint32_t pid = getpid();
    xcb_change_property(c, XCB_PROP_MODE_REPLACE, w, PID, XCB_ATOM_CARDINAL, 32, 1, &pid);
    xcb_change_property(c, XCB_PROP_MODE_REPLACE, w, TYPE, XCB_ATOM_ATOM, 32, 1, &NORMAL);
    xcb_change_property(c, XCB_PROP_MODE_REPLACE, w, PROTO, XCB_ATOM_ATOM, 32, 1, &DEL);
    char host[256] = "";
    gethostname(host, 255);
    xcb_change_property(c, XCB_PROP_MODE_REPLACE, w, XCB_ATOM_WM_CLIENT_MACHINE, XCB_ATOM_STRING, 8,
        strlen(host), host);
    title(w, "Document " + std::to_string(i) + " - App " + std::to_string(i % apps));
    xcb_map_window(c, w);
    return w;
}
static int shmid;
static uint8_t* shm;
static xcb_shm_seg_t seg;
static void initshm(int h)
{
    shmid = shmget(IPC_PRIVATE, s->width_in_pixels * h * 4, IPC_CREAT | 0600);
    shm = (uint8_t*)shmat(shmid, 0, 0);
    seg = xcb_generate_id(c);
    xcb_shm_attach(c, seg, shmid, 0);
    xcb_flush(c);
}
static void grab(int y, int h)
{
    auto k = xcb_shm_get_image(
        c, s->root, 0, y, s->width_in_pixels, h, ~0u, XCB_IMAGE_FORMAT_Z_PIXMAP, seg, 0);
    auto r = xcb_shm_get_image_reply(c, k, 0);
    free(r);
}
static void drain()
{
    while (auto e = xcb_poll_for_event(c))
        free(e);
}
static bool managed(xcb_window_t w)
{
    auto k = xcb_get_property(c, 0, s->root, CLIENTS, XCB_ATOM_WINDOW, 0, 4096);
    auto r = xcb_get_property_reply(c, k, 0);
    if (!r)
        return false;
    auto p = (xcb_window_t*)xcb_get_property_value(r);
    int n = xcb_get_property_value_length(r) / 4;
    bool f = std::find(p, p + n, w) != p + n;
    free(r);
    return f;
}
static void stat(const char* n, std::vector<double> v)
{
    if (v.empty()) {
        printf("%s none\n", n);
        return;
    }
    std::sort(v.begin(), v.end());
    printf("%s n=%zu min=%.2f median=%.2f p90=%.2f max=%.2f\n", n, v.size(), v[0], v[v.size() / 2],
        v[v.size() * 9 / 10], v.back());
}
static std::vector<xcb_window_t> mkAll(int N, int apps, int pause)
{
    std::vector<xcb_window_t> w;
    for (int i = 0; i < N; i++) {
        w.push_back(mk(i, apps));
        xcb_flush(c);
        usleep(pause);
    }
    return w;
}
static int open(int N, int apps)
{
    mkAll(N, apps, 3000);
    printf("open %d\n", N);
    fflush(stdout);
    char b[64];
    while (read(0, b, 64) > 0)
        drain();
    return 0;
}
static int storm(int N, int R, int S)
{
    auto w = mkAll(N, 10, 3000);
    usleep(1500000);
    printf("storm-start\n");
    fflush(stdout);
    char b[8];
    if (read(0, b, 1) <= 0)
        return 1;
    double t0 = now();
    long k = 0;
    for (long step = 0; step < (long)R * S; step++) {
        for (int i = 0; i < N; i++) {
            title(w[i], "Document " + std::to_string(i) + " progress " + std::to_string(step));
            k++;
        }
        xcb_flush(c);
        drain();
        double next = t0 + (step + 1) * 1000.0 / R;
        while (now() < next)
            usleep(500);
    }
    printf("storm-end changes=%ld\n", k);
    fflush(stdout);
    if (read(0, b, 1) < 0)
        return 1;
    return 0;
}
static int churn(int N, int C)
{
    for (int j = 0; j < C; j++) {
        auto w = mkAll(N, 5, 2000);
        usleep(100000);
        for (auto x : w)
            xcb_destroy_window(c, x);
        xcb_flush(c);
        usleep(50000);
        drain();
    }
    printf("churn-end\n");
    return 0;
}
// The strip as it was when it had stood still for 400 ms.
struct Strip {
    int y, h;
    std::vector<uint8_t> ref;
    Strip(int y, int h) : y(y), h(h), ref(s->width_in_pixels * h * 4) { initshm(h); }
    ~Strip() { shmctl(shmid, IPC_RMID, 0); }
    bool changed()
    {
        grab(y, h);
        return memcmp(ref.data(), shm, ref.size()) != 0;
    }
    void settle()
    {
        double q = now();
        grab(y, h);
        ref.assign(shm, shm + ref.size());
        while (now() - q < 400) {
            usleep(20000);
            if (changed()) {
                ref.assign(shm, shm + ref.size());
                q = now();
            }
        }
    }
};
static int latency(int Y, int H, int R)
{
    Strip strip(Y, H);
    std::vector<double> o, om, cl;
    for (int r = 0; r < R; r++) {
        strip.settle();
        double t0 = now(), tm = 0, t1 = 0;
        auto w = mk(1000 + r, 1000);
        xcb_flush(c);
        while (now() - t0 < 5000 && !t1) {
            if (!tm && managed(w))
                tm = now();
            if (strip.changed())
                t1 = now();
        }
        if (t1) {
            o.push_back(t1 - t0);
            if (tm) // drawn before it was seen on the list, it tells nothing
                om.push_back(t1 - tm);
        }
        strip.settle();
        t0 = now();
        xcb_destroy_window(c, w);
        xcb_flush(c);
        while (now() - t0 < 5000 && !strip.changed()) { }
        if (now() - t0 < 5000)
            cl.push_back(now() - t0);
        drain();
    }
    stat("open->strip ms", o);
    stat("managed->strip ms", om);
    stat("close->strip ms", cl);
    return 0;
}
static int paint(int Y, int H, int T, double start)
{
    Strip strip(Y, H);
    int W = s->width_in_pixels;
    while (now() - start < T) {
        grab(Y, H);
        std::set<uint32_t> k;
        auto p = (uint32_t*)shm;
        for (int i = 0; i < W * H && k.size() <= 8; i++)
            k.insert(p[i] & 0xffffff);
        if (k.size() > 8) {
            printf("paint %.1f\n", now() - start);
            return 0;
        }
        usleep(300);
    }
    printf("paint none\n");
    return 1;
}
int main(int n, char** a)
{
    double start = now();
    c = xcb_connect(0, 0);
    if (xcb_connection_has_error(c)) {
        fprintf(stderr, "no display\n");
        return 2;
    }
    s = xcb_setup_roots_iterator(xcb_get_setup(c)).data;
    std::string cmd = n > 1 ? a[1] : "";
    auto arg = [&](int i, int d) { return n > i ? atoi(a[i]) : d; };
    NAME = atom("_NET_WM_NAME");
    UTF8 = atom("UTF8_STRING");
    PID = atom("_NET_WM_PID");
    TYPE = atom("_NET_WM_WINDOW_TYPE");
    NORMAL = atom("_NET_WM_WINDOW_TYPE_NORMAL");
    PROTO = atom("WM_PROTOCOLS");
    DEL = atom("WM_DELETE_WINDOW");
    CLIENTS = atom("_NET_CLIENT_LIST");
    if (cmd == "open")
        return open(arg(2, 10), arg(3, 5));
    if (cmd == "storm")
        return storm(arg(2, 50), arg(3, 10), arg(4, 10));
    if (cmd == "churn")
        return churn(arg(2, 20), arg(3, 20));
    if (cmd == "latency")
        return latency(arg(2, 1040), arg(3, 40), arg(4, 20));
    if (cmd == "paint")
        return paint(arg(2, 1040), arg(3, 40), arg(4, 10000), start);
    fprintf(stderr, "deskload: see the head of the source\n");
    return 2;
}
