#include "app/velanor/server_address.h"

#include <QRegularExpression>
#include <QStringList>
#include <QUrl>

#include "velanor/postgres_database.h"

namespace velanor::app {
namespace {

QString encoded(const QString& text) { return QString::fromLatin1(QUrl::toPercentEncoding(text)); }
QString decoded(const QString& text) { return QUrl::fromPercentEncoding(text.toUtf8()); }

// The brackets of an address of numbers are the URL's, not the host's.
QString host_of(const QString& part) {
  return part.startsWith('[') ? part.mid(1, part.size() - 2) : decoded(part);
}

QString host_part(const QString& host) {
  return host.contains(':') && !host.startsWith('/') ? "[" + host + "]" : encoded(host);
}

}  // namespace

bool is_server(const QString& source) { return store::PostgresDatabase::is_url(source.toStdString()); }

ServerAddress ServerAddress::of(const QString& url) {
  static const QRegularExpression kParts(
      R"(^postgres(?:ql)?://(?:([^:@/?]*)(?::([^@/?]*))?@)?(\[[^\]]*\]|[^:/?]*)(?::(\d*))?(?:/([^?]*))?(?:\?(.*))?$)");
  ServerAddress address;
  address.tls.clear();
  const auto parts = kParts.match(url);
  address.user = decoded(parts.captured(1));
  address.password = decoded(parts.captured(2));
  address.host = host_of(parts.captured(3));
  address.port = parts.captured(4);
  address.base = decoded(parts.captured(5));
  QStringList more;
  for (const QString& option : parts.captured(6).split('&', Qt::SkipEmptyParts)) {
    const QString value = decoded(option.section('=', 1));
    const QString name = option.section('=', 0, 0);
    QString* known = name == "host"       ? &address.host
                     : name == "port"     ? &address.port
                     : name == "dbname"   ? &address.base
                     : name == "user"     ? &address.user
                     : name == "password" ? &address.password
                     : name == "sslmode"  ? &address.tls
                                          : nullptr;
    known ? void(*known = value) : more.append(option);
  }
  address.more = more.join('&');
  return address;
}

QString ServerAddress::url(const QString& secret) const {
  QString url = "postgresql://";
  if (!user.isEmpty()) url += encoded(user) + secret + "@";
  url += host_part(host);
  if (!port.isEmpty()) url += ":" + encoded(port);
  url += "/" + encoded(base);
  QStringList options = more.split('&', Qt::SkipEmptyParts);
  if (!tls.isEmpty()) options.prepend("sslmode=" + encoded(tls));
  return options.isEmpty() ? url : url + "?" + options.join('&');
}

QString ServerAddress::url() const { return url(QString()); }

QString ServerAddress::url_with_password() const {
  if (password.isEmpty()) return url();
  if (!user.isEmpty()) return url(":" + encoded(password));
  const QString plain = url();
  return plain + (plain.contains('?') ? "&" : "?") + "password=" + encoded(password);
}

QString ServerAddress::name() const {
  const QString named = base.isEmpty() ? user : base;
  return host.isEmpty() ? named : named + " sur " + host;
}

}  // namespace velanor::app
