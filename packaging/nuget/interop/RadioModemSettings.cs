// What RFReadModemSettings reads, in one object.
namespace KespCommObj
{
    /// <summary>The settings of a radio modem, as it tells them.</summary>
    public sealed class RadioModemSettings
    {
        internal string serial = "", power = "", panId = "", channel = "", address = "", timeout = "";

        /// <summary>Serial number.</summary>
        public string Serial { get { return serial; } }

        /// <summary>Power level.</summary>
        public string PowerLevel { get { return power; } }

        /// <summary>Identifier of the modem's network.</summary>
        public string PanId { get { return panId; } }

        /// <summary>Channel.</summary>
        public string Channel { get { return channel; } }

        /// <summary>Address of the modem.</summary>
        public string ModemAddress { get { return address; } }

        /// <summary>Timeout.</summary>
        public string Timeout { get { return timeout; } }
    }
}
