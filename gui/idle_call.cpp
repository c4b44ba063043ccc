#include "gui/idle_call.h"

#include <memory>
#include <utility>

#include "gui/owned_objects.h"

namespace {

struct IdleCall {
  OwnedObject<GtkWidget> widget;
  std::function<void()> function;
  gulong destroy_handler = 0; // on the widget
  guint source = 0;
};

// "destroy" of the widget, only before the call.
void destroy_callback(GtkWidget *, IdleCall *call) { g_source_remove(call->source); }

// Disconnects the handler first: the function may destroy the widget.
gboolean idle_callback(void *data) {
  auto *call = static_cast<IdleCall *>(data);
  g_signal_handler_disconnect(call->widget.get(), std::exchange(call->destroy_handler, 0));
  call->function();
  return G_SOURCE_REMOVE;
}

void free_call(void *data) {
  const std::unique_ptr<IdleCall> call(static_cast<IdleCall *>(data));
  if (call->destroy_handler != 0) {
    g_signal_handler_disconnect(call->widget.get(), call->destroy_handler);
  }
}

} // namespace

void v_idle_call_add(GtkWidget *widget, int priority, std::function<void()> function) {
  auto call = std::make_unique<IdleCall>();
  call->widget = share(widget);
  call->function = std::move(function);
  call->destroy_handler =
      g_signal_connect(widget, "destroy", G_CALLBACK(destroy_callback), call.get());
  IdleCall *source_data = call.release();
  source_data->source = g_idle_add_full(priority, idle_callback, source_data, free_call);
}
