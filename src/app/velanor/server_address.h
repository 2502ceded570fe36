// Where a base on a server is, as a dialog asks for it and the settings keep it.
#pragma once

#include <QString>

namespace velanor::app {

struct ServerAddress {
  QString host, port, base, user;
  QString password = {};                        // kept nowhere
  QString tls = QStringLiteral("verify-full");  // as libpq names it
  QString more = {};                            // options of a URL that nobody is asked for

  // Of a URL of libpq; what it does not name is empty.
  static ServerAddress of(const QString& url);
  // Whatever the parts consist of. Fit to be shown and kept, unless with the password.
  QString url() const;
  QString url_with_password() const;
  // "fiches sur serveur".
  QString name() const;

 private:
  QString url(const QString& secret) const;
};

bool is_server(const QString& source);

}  // namespace velanor::app
