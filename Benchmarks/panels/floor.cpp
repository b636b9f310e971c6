// floor: the least a bar can do (no groups, icons, menus or rules), as the physical limit beside
// real panels in panelbench.py:
//   g++ -O2 -std=c++20 floor.cpp -o floor $(pkg-config --cflags --libs xcb cairo-xcb pangocairo)
#include <cairo/cairo-xcb.h>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <pango/pangocairo.h>
#include <poll.h>
#include <string>
#include <vector>
#include <xcb/xcb.h>
static xcb_connection_t* c;
static xcb_screen_t* s;
static xcb_window_t bar;
static cairo_surface_t *surf, *buf;
static cairo_t *cr, *bc;
static PangoLayout* lay;
static xcb_atom_t A(const char* n)
{
    auto r = xcb_intern_atom_reply(c, xcb_intern_atom(c, 0, strlen(n), n), 0);
    auto a = r->atom;
    free(r);
    return a;
}
static xcb_atom_t CL, NAME, UTF8;
struct Chip {
    xcb_window_t w;
    std::string t;
};
static std::vector<Chip> chips;
static void paint(size_t i)
{
    double cw = std::min(180.0, 1900.0 / std::max<size_t>(1, chips.size()));
    double x = 10 + i * cw;
    cairo_save(bc);
    cairo_rectangle(bc, x, 4, cw - 4, 28);
    cairo_clip(bc);
    cairo_set_source_rgb(bc, .2, .25, .3);
    cairo_paint(bc);
    cairo_set_source_rgb(bc, 1, 1, 1);
    cairo_move_to(bc, x + 24, 9);
    pango_layout_set_text(lay, chips[i].t.c_str(), -1);
    pango_layout_set_width(lay, (int)((cw - 30) * PANGO_SCALE));
    pango_layout_set_ellipsize(lay, PANGO_ELLIPSIZE_END);
    pango_cairo_show_layout(bc, lay);
    cairo_set_source_rgb(bc, .8, .5, .2);
    cairo_rectangle(bc, x + 5, 10, 16, 16);
    cairo_fill(bc);
    cairo_restore(bc);
    cairo_save(cr);
    cairo_rectangle(cr, x, 4, cw - 4, 28);
    cairo_clip(cr);
    cairo_set_source_surface(cr, buf, 0, 0);
    cairo_set_operator(cr, CAIRO_OPERATOR_SOURCE);
    cairo_paint(cr);
    cairo_restore(cr);
}
static void all()
{
    cairo_set_source_rgb(bc, .1, .1, .12);
    cairo_paint(bc);
    for (size_t i = 0; i < chips.size(); i++)
        paint(i);
    cairo_set_source_surface(cr, buf, 0, 0);
    cairo_set_operator(cr, CAIRO_OPERATOR_SOURCE);
    cairo_paint(cr);
}
static std::string title(xcb_window_t w)
{
    auto r = xcb_get_property_reply(c, xcb_get_property(c, 0, w, NAME, UTF8, 0, 256), 0);
    std::string t;
    if (r) {
        t.assign((char*)xcb_get_property_value(r), xcb_get_property_value_length(r));
        free(r);
    }
    return t;
}
static void list()
{
    auto r = xcb_get_property_reply(
        c, xcb_get_property(c, 0, s->root, CL, XCB_ATOM_WINDOW, 0, 4096), 0);
    if (!r)
        return;
    auto p = (xcb_window_t*)xcb_get_property_value(r);
    int n = xcb_get_property_value_length(r) / 4;
    std::vector<Chip> nw;
    std::vector<size_t> fresh;
    std::vector<xcb_get_property_cookie_t> ck;
    for (int i = 0; i < n; i++) {
        if (p[i] == bar)
            continue;
        bool f = false;
        for (auto& k : chips)
            if (k.w == p[i]) {
                nw.push_back(k);
                f = true;
            }
        if (!f) {
            uint32_t m = XCB_EVENT_MASK_PROPERTY_CHANGE;
            xcb_change_window_attributes(c, p[i], XCB_CW_EVENT_MASK, &m);
            ck.push_back(xcb_get_property(c, 0, p[i], NAME, UTF8, 0, 256));
            fresh.push_back(nw.size());
            nw.push_back({p[i], ""});
        }
    }
    for (size_t j = 0; j < fresh.size(); j++) {
        auto q = xcb_get_property_reply(c, ck[j], 0);
        if (q) {
            nw[fresh[j]].t.assign(
                (char*)xcb_get_property_value(q), xcb_get_property_value_length(q));
            free(q);
        }
    }
    free(r);
    bool tail = nw.size() == chips.size() + 1 && fresh.size() == 1 && fresh[0] == chips.size()
        && nw.size() < 10;
    chips = nw;
    if (tail)
        paint(chips.size() - 1);
    else
        all();
}
// The window along the bottom.
static void makeBar()
{
    c = xcb_connect(0, 0);
    s = xcb_setup_roots_iterator(xcb_get_setup(c)).data;
    CL = A("_NET_CLIENT_LIST");
    NAME = A("_NET_WM_NAME");
    UTF8 = A("UTF8_STRING");
    auto T = A("_NET_WM_WINDOW_TYPE"), D = A("_NET_WM_WINDOW_TYPE_DOCK"),
         SP = A("_NET_WM_STRUT_PARTIAL");
    int W = s->width_in_pixels, H = s->height_in_pixels;
    bar = xcb_generate_id(c);
    uint32_t v[] = {0, XCB_EVENT_MASK_EXPOSURE};
    xcb_create_window(c, XCB_COPY_FROM_PARENT, bar, s->root, 0, H - 36, W, 36, 0,
        XCB_WINDOW_CLASS_INPUT_OUTPUT, s->root_visual, XCB_CW_BACK_PIXEL | XCB_CW_EVENT_MASK, v);
    xcb_change_property(c, 0, bar, T, XCB_ATOM_ATOM, 32, 1, &D);
    uint32_t st[12] = {0, 0, 0, 36, 0, 0, 0, 0, 0, 0, 0, (uint32_t)W};
    xcb_change_property(c, 0, bar, SP, XCB_ATOM_CARDINAL, 32, 12, st);
    uint32_t h[18] = {1 | 4, (uint32_t)0, (uint32_t)(H - 36), (uint32_t)W, 36};
    h[0] = 5;
    xcb_change_property(c, 0, bar, XCB_ATOM_WM_NORMAL_HINTS, XCB_ATOM_WM_SIZE_HINTS, 32, 18, h);
    xcb_map_window(c, bar);
    uint32_t m = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_change_window_attributes(c, s->root, XCB_CW_EVENT_MASK, &m);
}
static void makeCanvas()
{
    int W = s->width_in_pixels;
    xcb_visualtype_t* vt = 0;
    for (auto d = xcb_screen_allowed_depths_iterator(s); d.rem; xcb_depth_next(&d))
        for (auto q = xcb_depth_visuals_iterator(d.data); q.rem; xcb_visualtype_next(&q))
            if (q.data->visual_id == s->root_visual)
                vt = q.data;
    surf = cairo_xcb_surface_create(c, bar, vt, W, 36);
    buf = getenv("IMG") ? cairo_image_surface_create(CAIRO_FORMAT_RGB24, W, 36)
                        : cairo_surface_create_similar(surf, CAIRO_CONTENT_COLOR, W, 36);
    cr = cairo_create(surf);
    bc = cairo_create(buf);
    lay = pango_cairo_create_layout(bc);
    auto f = pango_font_description_from_string("Sans 9");
    pango_layout_set_font_description(lay, f);
}
// All events that are there by now, the first of them e.
static void turn(xcb_generic_event_t* e)
{
    bool dolist = false, exp = false;
    std::map<xcb_window_t, int> t;
    for (; e; e = xcb_poll_for_queued_event(c)) {
        int k = e->response_type & 127;
        if (k == XCB_PROPERTY_NOTIFY) {
            auto q = (xcb_property_notify_event_t*)e;
            if (q->atom == CL)
                dolist = true;
            else if (q->atom == NAME)
                t[q->window] = 1;
        } else if (k == XCB_EXPOSE)
            exp = true;
        free(e);
    }
    if (dolist)
        list();
    for (auto& [w, _] : t)
        for (size_t i = 0; i < chips.size(); i++)
            if (chips[i].w == w) {
                auto n = title(w);
                if (n != chips[i].t) {
                    chips[i].t = n;
                    paint(i);
                }
            }
    if (exp) {
        cairo_set_source_surface(cr, buf, 0, 0);
        cairo_paint(cr);
    }
}
int main()
{
    makeBar();
    makeCanvas();
    list();
    for (;;) {
        cairo_surface_flush(surf);
        xcb_flush(c);
        pollfd p{xcb_get_file_descriptor(c), POLLIN, 0};
        if (auto e = xcb_poll_for_event(c))
            turn(e);
        else if (xcb_connection_has_error(c))
            return 0;
        else
            poll(&p, 1, -1);
    }
}
